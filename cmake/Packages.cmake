# SPDX-License-Identifier: Apache-2.0
# `cpack` makes the Debian packages; configure with -DCMAKE_BUILD_TYPE=Release for them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME korvane)
set(CPACK_PACKAGE_VENDOR "The Korvane developers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Card-management component for banking apps")
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "The Korvane developers <developers@korvane.example>")
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_COMPONENTS_ALL runtime development sandbox)
if(KORVANE_QUICK)
  list(APPEND CPACK_COMPONENTS_ALL quick qml quick-development)
endif()

set(same "(= ${PROJECT_VERSION})")
set(about "Set the PIN, activate and view a card: journeys that a bank embeds in its app.")

# korvane_package(component package section text DEPENDS …): what the shared libraries do not tell by themselves.
macro(korvane_package component package section text depends)
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package})
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${depends}")
  set(CPACK_COMPONENT_${upper}_DESCRIPTION "${text}\n${about}")
  install(FILES ${PROJECT_BINARY_DIR}/copyright ${PROJECT_SOURCE_DIR}/NOTICE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component}
          EXCLUDE_FROM_ALL)
endmacro()
configure_file(cmake/copyright.in copyright @ONLY)
korvane_package(runtime libkorvane1 libs "Shared libraries." "libcurl4 (>= 7.87)")  # its symbols are older
korvane_package(development libkorvane-dev libdevel "Headers and archives, for C++ and C." "libkorvane1 ${same}")
korvane_package(sandbox korvane-sandbox devel "A card service for development, and the journeys on the console." "libkorvane1 ${same}")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_RECOMMENDS "libssl-dev, libcurl4-openssl-dev, libglib2.0-dev, libsecret-1-dev")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS libgtest-dev)  # for the contracts
if(KORVANE_QUICK)
  korvane_package(quick libkorvane-quick1 libs "Shared library for Qt Quick." "libkorvane1 ${same}")
  korvane_package(qml qml6-module-korvane libs "QML module."
                  "libkorvane-quick1 ${same}, qml6-module-qtquick, qml6-module-qtquick-window, qml6-module-qtquick-templates")
  korvane_package(quick-development libkorvane-quick-dev libdevel "Development with Qt Quick."
                  "libkorvane-dev ${same}, libkorvane-quick1 ${same}, qt6-declarative-dev")
  set(CPACK_DEBIAN_QUICK_PACKAGE_DEPENDS
      "${CPACK_DEBIAN_QUICK_PACKAGE_DEPENDS}, qml6-module-qtquick, qml6-module-qtquick-window, qml6-module-qtquick-templates")
  set(CPACK_DEBIAN_QUICK_PACKAGE_RECOMMENDS "fonts-manrope, fonts-noto-ui-core")
endif()
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS gnome-keyring)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SUGGESTS fprintd)
include(CPack)
