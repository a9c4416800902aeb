# SPDX-License-Identifier: Apache-2.0
# Toolchain: Core and its tests for 64-bit Arm, which is what phones have, with Debian's cross compiler. The tests run
# under user-mode emulation. The libraries are those that cmake/install-packages arm64 unpacked.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -L /usr/aarch64-linux-gnu)

set(CMAKE_FIND_ROOT_PATH ${CMAKE_CURRENT_LIST_DIR}/../build/arm64-libraries)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
include_directories(SYSTEM ${CMAKE_FIND_ROOT_PATH}/usr/include ${CMAKE_FIND_ROOT_PATH}/usr/include/aarch64-linux-gnu)
# Static: the emulator then needs the cross compiler's own libraries alone.
set(OPENSSL_USE_STATIC_LIBS ON)
