# SPDX-License-Identifier: Apache-2.0
# What `cmake --install` puts where, in parts that are the Debian packages' too: runtime, quick, qml, development,
# quick-development, sandbox.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Korvane)
set(library_set ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)
set(includes INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

# korvane_install_export(name component): the targets of one set, in a file of its own so that each package brings its own.
function(korvane_install_export name component)
  install(EXPORT Korvane${name} FILE Korvane${name}Targets.cmake NAMESPACE Korvane:: DESTINATION ${package_dir}
          COMPONENT ${component})
endfunction()

install(TARGETS korvane_core_shared korvane_linux_shared EXPORT KorvaneShared LIBRARY DESTINATION ${library_set} ${includes})
# For the tests of hosts: no app ships it.
install(TARGETS korvane_fakes_shared EXPORT KorvaneShared LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
        ${includes})
install(TARGETS korvane_core korvane_linux korvane_fakes EXPORT KorvaneStatic
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development ${includes})
install(TARGETS korvane_c EXPORT KorvaneC LIBRARY DESTINATION ${library_set} ${includes})
korvane_install_export(Shared development)
korvane_install_export(Static development)
korvane_install_export(C development)

# headers(destination FILES …)
macro(korvane_install_headers folder)
  install(FILES ${ARGN} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/korvane/${folder} COMPONENT development)
endmacro()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/korvane DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
        FILES_MATCHING PATTERN *.h)
korvane_install_headers(. ${PROJECT_BINARY_DIR}/include/korvane/Export.h)
list(TRANSFORM KORVANE_LINUX_HEADERS PREPEND ${PROJECT_SOURCE_DIR}/src/platform/linux/)
korvane_install_headers(linux ${KORVANE_LINUX_HEADERS})
file(GLOB fakes_headers ${PROJECT_SOURCE_DIR}/src/platform/fakes/*.h)
korvane_install_headers(fakes ${fakes_headers})

configure_package_config_file(cmake/KorvaneConfig.cmake.in KorvaneConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(KorvaneConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/KorvaneConfig.cmake ${PROJECT_BINARY_DIR}/KorvaneConfigVersion.cmake
        DESTINATION ${package_dir} COMPONENT development)

# korvane_install_pc(library component description [REQUIRES …] [PRIVATE …])
function(korvane_install_pc library component description)
  cmake_parse_arguments(arg "" "" "REQUIRES;PRIVATE" ${ARGN})
  string(JOIN ", " requires ${arg_REQUIRES})
  string(JOIN ", " private ${arg_PRIVATE})
  file(RELATIVE_PATH up /${CMAKE_INSTALL_LIBDIR}/pkgconfig /.)
  string(REGEX REPLACE "/$" "" up ${up})
  configure_file(cmake/korvane.pc.in ${library}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${library}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT ${component})
endfunction()
korvane_install_pc(korvane development "Card journeys behind a C interface")
korvane_install_pc(korvane-core development "Card journeys without a window, in C++" PRIVATE libcrypto)
korvane_install_pc(korvane-linux development "Card journeys: the ports of a Linux device" REQUIRES korvane-core
                   PRIVATE libcurl libssl glib-2.0 libsecret-1)
korvane_install_pc(korvane-fakes development "Card journeys: a device of fakes, for tests" REQUIRES korvane-core
                   PRIVATE libcrypto)

if(KORVANE_QUICK)
  set(qml_dir ${CMAKE_INSTALL_LIBDIR}/qt6/qml/Korvane)  # where Debian's Qt looks for modules
  install(TARGETS korvane_quick_shared EXPORT KorvaneQuickShared
          LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT quick NAMELINK_COMPONENT quick-development ${includes})
  install(TARGETS korvane_quick_archive EXPORT KorvaneQuickStatic
          ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT quick-development ${includes})
  korvane_install_export(QuickShared quick-development)
  korvane_install_export(QuickStatic quick-development)
  korvane_install_pc(korvane-quick quick-development "Card journeys in Qt Quick" REQUIRES korvane-core Qt6Quick)
  file(RELATIVE_PATH up /${qml_dir} /${CMAKE_INSTALL_LIBDIR})
  korvane_finds(korvane_qml_plugin "$ORIGIN/${up}" "$ORIGIN/../../lib")  # the second in the build tree
  install(TARGETS korvane_qml_plugin LIBRARY DESTINATION ${qml_dir} COMPONENT qml)
  # The engine takes the QML from the library; tools want the files.
  install(DIRECTORY ${PROJECT_BINARY_DIR}/qml/Korvane/ DESTINATION ${qml_dir} COMPONENT qml
          FILES_MATCHING PATTERN qmldir PATTERN *.qmltypes PATTERN *.qml)
endif()

file(RELATIVE_PATH up /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
korvane_finds(korvane-journey "$ORIGIN/${up}" "$ORIGIN/../lib")  # the second in the build tree
install(TARGETS korvane-sandbox korvane-wire korvane-journey RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT sandbox)

include(cmake/Sbom.cmake)
install(FILES LICENSE NOTICE docs/licences.md ${PROJECT_BINARY_DIR}/korvane.spdx.json DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/korvane
        COMPONENT runtime)
