# SPDX-License-Identifier: Apache-2.0
# What makes a defect harder to use, in everything that is compiled here but for the checkers' builds: stack protector,
# control-flow protection, read-only relocations, no lazy binding, no executable stack. Release builds check the sizes
# of the C library's copies too, which wants optimization.
include(CheckCXXSourceCompiles)

if(KORVANE_SANITIZE)
  return()
endif()
add_compile_options(-fstack-protector-strong)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
  add_compile_options(-fcf-protection)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64")
  add_compile_options(-mbranch-protection=standard)
endif()
add_link_options(LINKER:-z,relro,-z,now,-z,noexecstack)

# Level 3 knows sizes that are known at run time alone: GCC 12 or Clang, with glibc 2.34.
check_cxx_source_compiles("#include <features.h>
#if !__GLIBC_PREREQ(2, 34) || !__has_builtin(__builtin_dynamic_object_size)
#error
#endif
int main() {}" KORVANE_FORTIFIES_AT_RUN_TIME)
set(level $<IF:$<BOOL:${KORVANE_FORTIFIES_AT_RUN_TIME}>,3,2>)
set(release $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
add_compile_options($<${release}:-U_FORTIFY_SOURCE> $<${release}:-D_FORTIFY_SOURCE=${level}>)
