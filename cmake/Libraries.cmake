# SPDX-License-Identifier: Apache-2.0
# Each library has two forms made of the same objects, so that no file is compiled twice: the archive, which
# everything in this tree links, and the shared library. A shared library links the shared form of those below it, so a
# process that uses them holds the component's state once.
include(GenerateExportHeader)
# Before Qt asks for it.
if(CMAKE_LIBRARY_ARCHITECTURE AND EXISTS /etc/debian_version)
  set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE} CACHE PATH "Libraries")  # below any prefix, not /usr alone
endif()
include(GNUInstallDirs)

set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
configure_file(${CMAKE_CURRENT_LIST_DIR}/korvane.map.in ${PROJECT_BINARY_DIR}/korvane.map @ONLY)

# korvane_finds(target place…): where it looks for our libraries. In the build tree and installed alike: a path that CMake
# changes at install ends in an empty entry until then, which stands for the current directory.
function(korvane_finds target)
  set_target_properties(${target} PROPERTIES INSTALL_RPATH "${ARGN}" BUILD_WITH_INSTALL_RPATH ON)
endfunction()

# korvane_shared(target MAP file): what all shared libraries have in common.
function(korvane_shared target)
  cmake_parse_arguments(arg "" "MAP" "" ${ARGN})
  set_target_properties(
    ${target} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR} LINKER_LANGUAGE CXX AUTOMOC OFF
                         LINK_DEPENDS ${arg_MAP})
  korvane_finds(${target} "$ORIGIN")  # they are found wherever they are put
  target_link_options(${target} PRIVATE LINKER:--version-script=${arg_MAP} LINKER:--no-undefined)
endfunction()

# korvane_library(archive component [OBJECTS …] [PUBLIC …] [PRIVATE …]): names the archive korvane_core libkorvane-core.a and
# adds korvane_core_shared, libkorvane-core.so, which links what is listed. Hosts find either as Korvane::<component>.
function(korvane_library archive component)
  cmake_parse_arguments(arg "" "" "OBJECTS;PUBLIC;PRIVATE" ${ARGN})
  string(REPLACE "_" "-" name ${archive})
  add_library(${archive}_shared SHARED $<TARGET_OBJECTS:${archive}> ${arg_OBJECTS})
  set_target_properties(${archive} ${archive}_shared PROPERTIES OUTPUT_NAME ${name} EXPORT_NAME ${component})
  target_compile_features(${archive} INTERFACE cxx_std_20)
  target_compile_features(${archive}_shared INTERFACE cxx_std_20)
  target_link_libraries(${archive}_shared PUBLIC ${arg_PUBLIC} PRIVATE korvane_options ${arg_PRIVATE})
  korvane_shared(${archive}_shared MAP ${PROJECT_BINARY_DIR}/korvane.map)
  if(NOT KORVANE_DEVICE)
    set_target_properties(${archive}_shared PROPERTIES EXCLUDE_FROM_ALL ON)  # nothing is installed
  endif()
endfunction()
