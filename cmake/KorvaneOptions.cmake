# SPDX-License-Identifier: Apache-2.0
# The one place for compiler settings: every target links korvane_options.
add_library(korvane_options INTERFACE)
target_compile_features(korvane_options INTERFACE cxx_std_20)
target_compile_options(korvane_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                       -Wold-style-cast -Wconversion -Wno-sign-conversion)
target_include_directories(korvane_options INTERFACE ${PROJECT_SOURCE_DIR}/include ${PROJECT_BINARY_DIR}/include
                                                     ${PROJECT_SOURCE_DIR}/src)
if(KORVANE_WARNINGS_AS_ERRORS)
  target_compile_options(korvane_options INTERFACE -Werror)
endif()
if(KORVANE_SANITIZE)
  target_compile_options(korvane_options INTERFACE -fsanitize=${KORVANE_SANITIZE} -fno-omit-frame-pointer
                         -fno-sanitize-recover=all)
  # GCC 12 sees uninitialized values in std::regex that are not there once sanitizers instrument it.
  target_compile_options(korvane_options INTERFACE -Wno-maybe-uninitialized)
  if(KORVANE_SANITIZE STREQUAL "thread")
    # Qt's headers use a fence that the data-race checker does not follow; we hand over by mutexes.
    target_compile_options(korvane_options INTERFACE -Wno-tsan)
  endif()
  target_link_options(korvane_options INTERFACE -fsanitize=${KORVANE_SANITIZE})
endif()
if(KORVANE_COVERAGE)
  target_compile_options(korvane_options INTERFACE --coverage)
  target_link_options(korvane_options INTERFACE --coverage)
endif()

set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
