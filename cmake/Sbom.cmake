# SPDX-License-Identifier: Apache-2.0
# korvane.spdx.json: the bill of materials (SPDX 2.3), with the versions that this build found.

# sbom_reference(category type locator): one of `references`, of which sbom_package makes its list.
macro(sbom_reference category type locator)
  list(APPEND references
       "{\"referenceCategory\": \"${category}\", \"referenceType\": \"${type}\", \"referenceLocator\": \"${locator}\"}")
endmacro()

# sbom_debian(path): sets `package`, `debian_version` and `architecture` of the Debian package that brought the file; empty
# elsewhere. A file below /usr may be registered as if it were not.
function(sbom_debian path)
  string(REGEX REPLACE "^/usr/" "/" short ${path})
  set(package "")
  set(debian_version "")
  set(architecture "")
  find_program(KORVANE_DPKG_QUERY dpkg-query)
  mark_as_advanced(KORVANE_DPKG_QUERY)
  if(KORVANE_DPKG_QUERY)
    execute_process(COMMAND ${KORVANE_DPKG_QUERY} -S ${path} ${short} OUTPUT_VARIABLE owner ERROR_QUIET)
    if(owner MATCHES "^([^:, ]+)(:[a-z0-9]+)?: ")
      set(package ${CMAKE_MATCH_1})
      execute_process(COMMAND ${KORVANE_DPKG_QUERY} -W -f "\${Version};\${Architecture}" ${package}${CMAKE_MATCH_2}
                      OUTPUT_VARIABLE shown)
      list(GET shown 0 debian_version)
      list(GET shown 1 architecture)
    endif()
  endif()
  foreach(result package debian_version architecture)
    set(${result} ${${result}} PARENT_SCOPE)
  endforeach()
endfunction()

# sbom_package(id name version licence supplier url [SONAMES …] [HEADER path]): one package of the document, by the template.
# The hash is that of the first library, or the header, that this build found; each Debian package has a purl.
function(sbom_package id name version licence supplier url)
  cmake_parse_arguments(arg "" "HEADER" "SONAMES" ${ARGN})
  set(references "")
  set(checksums "")
  set(sources "")
  set(files ${arg_HEADER})
  foreach(soname IN LISTS arg_SONAMES)
    sbom_reference(OTHER soname ${soname})
    find_file(found NAMES ${soname} NO_CACHE NO_DEFAULT_PATH
              PATHS /usr/lib/${CMAKE_LIBRARY_ARCHITECTURE} /lib/${CMAKE_LIBRARY_ARCHITECTURE} /usr/lib64 /lib64 /usr/lib /lib)
    if(found)
      list(APPEND files ${found})
    endif()
    unset(found)
  endforeach()
  foreach(path IN LISTS files)
    if(NOT checksums)
      file(SHA256 ${path} hash)
      get_filename_component(hashed ${path} NAME)
      set(checksums "{\"algorithm\": \"SHA256\", \"checksumValue\": \"${hash}\"}")
      list(APPEND sources "the hash is that of ${hashed}")
    endif()
    sbom_debian(${path})
    if(package AND NOT "Debian package ${package} ${debian_version}" IN_LIST sources)
      list(APPEND sources "Debian package ${package} ${debian_version}")
      string(REPLACE ":" "%3A" encoded "${debian_version}")
      string(REPLACE "+" "%2B" encoded "${encoded}")
      sbom_reference(PACKAGE-MANAGER purl "pkg:deb/debian/${package}@${encoded}?arch=${architecture}")
    endif()
  endforeach()
  if(NOT sources)
    set(sources "made by this build")
    sbom_reference(PACKAGE-MANAGER purl "pkg:generic/${name}@${version}")
  endif()
  list(JOIN sources ", " source)
  list(JOIN references ",\n        " references)
  file(READ ${PROJECT_SOURCE_DIR}/cmake/sbom-package.json.in template)
  string(CONFIGURE "${template}" entry @ONLY)
  string(STRIP "${entry}" entry)
  set_property(GLOBAL APPEND_STRING PROPERTY KORVANE_SBOM_PACKAGES ",\n    ${entry}")
endfunction()

# sbom_needs(id dependency…): what a package is built with.
function(sbom_needs id)
  foreach(dependency IN LISTS ARGN)
    set_property(GLOBAL APPEND_STRING PROPERTY KORVANE_SBOM_RELATIONSHIPS ",
    {\"spdxElementId\": \"SPDXRef-${id}\", \"relationshipType\": \"DEPENDS_ON\", \"relatedSpdxElement\": \"SPDXRef-${dependency}\"}")
  endforeach()
endfunction()

# sbom_part(id name dependency…): something of ours that is shipped.
function(sbom_part id name)
  sbom_package(${id} ${name} ${PROJECT_VERSION} Apache-2.0 "The Korvane developers" NOASSERTION)
  set_property(GLOBAL APPEND_STRING PROPERTY KORVANE_SBOM_RELATIONSHIPS ",
    {\"spdxElementId\": \"SPDXRef-Korvane\", \"relationshipType\": \"CONTAINS\", \"relatedSpdxElement\": \"SPDXRef-${id}\"}")
  sbom_needs(${id} ${ARGN} gcc glibc)
endfunction()

foreach(module libcrypto libcurl glib-2.0 libsecret-1 cpp-httplib sqlite3 zlib)
  pkg_check_modules(SBOM_${module} REQUIRED QUIET ${module})
endforeach()
find_path(RAPIDJSON_INCLUDE_DIR rapidjson/rapidjson.h REQUIRED)
file(STRINGS ${RAPIDJSON_INCLUDE_DIR}/rapidjson/rapidjson.h numbers REGEX "define RAPIDJSON_(MAJOR|MINOR|PATCH)_VERSION")
string(REGEX REPLACE "[^0-9;]" "" numbers "${numbers}")
string(REPLACE ";" "." rapidjson_version "${numbers}")
execute_process(COMMAND getconf GNU_LIBC_VERSION OUTPUT_VARIABLE glibc_version OUTPUT_STRIP_TRAILING_WHITESPACE)
string(REPLACE "glibc " "" glibc_version "${glibc_version}")

sbom_package(gcc "GCC runtime" ${CMAKE_CXX_COMPILER_VERSION} "GPL-3.0-or-later WITH GCC-exception-3.1"
             "Free Software Foundation" https://gcc.gnu.org SONAMES libstdc++.so.6 libgcc_s.so.1)
sbom_package(glibc "GNU C Library" "${glibc_version}" LGPL-2.1-or-later "Free Software Foundation"
             https://www.gnu.org/software/libc SONAMES libc.so.6 libm.so.6 ld-linux-x86-64.so.2 ld-linux-aarch64.so.1)
sbom_package(openssl OpenSSL ${SBOM_libcrypto_VERSION} Apache-2.0 "The OpenSSL Project" https://www.openssl.org
             SONAMES libcrypto.so.3 libssl.so.3)
sbom_package(rapidjson RapidJSON ${rapidjson_version} MIT "THL A29 Limited" https://rapidjson.org
             HEADER ${RAPIDJSON_INCLUDE_DIR}/rapidjson/rapidjson.h)
sbom_package(curl curl ${SBOM_libcurl_VERSION} curl "The curl project" https://curl.se SONAMES libcurl.so.4)
sbom_package(glib GLib ${SBOM_glib-2.0_VERSION} LGPL-2.1-or-later "The GNOME Project" https://www.gtk.org
             SONAMES libglib-2.0.so.0 libgobject-2.0.so.0 libgio-2.0.so.0)
sbom_package(libsecret libsecret ${SBOM_libsecret-1_VERSION} LGPL-2.1-or-later "The GNOME Project"
             https://gitlab.gnome.org/GNOME/libsecret SONAMES libsecret-1.so.0)
sbom_package(httplib cpp-httplib ${SBOM_cpp-httplib_VERSION} MIT "The cpp-httplib project"
             https://github.com/yhirose/cpp-httplib SONAMES libcpp-httplib.so.0.11)
sbom_package(sqlite SQLite ${SBOM_sqlite3_VERSION} blessing "The SQLite Consortium" https://sqlite.org SONAMES libsqlite3.so.0)
sbom_package(zlib zlib ${SBOM_zlib_VERSION} Zlib "The zlib project" https://zlib.net SONAMES libz.so.1)

sbom_part(core libkorvane-core openssl rapidjson)
sbom_part(linux libkorvane-linux openssl curl glib libsecret)
sbom_part(fakes libkorvane-fakes openssl rapidjson)
sbom_part(c libkorvane openssl rapidjson curl glib libsecret)
sbom_part(sandbox korvane-sandbox openssl rapidjson httplib sqlite zlib)
sbom_part(wire korvane-wire)
sbom_part(journey korvane-journey curl glib rapidjson)
if(KORVANE_QUICK)
  pkg_check_modules(SBOM_Qt6Quick REQUIRED QUIET Qt6Quick)
  set(qt_sonames Core Gui Qml QmlModels Quick Network DBus OpenGL)
  list(TRANSFORM qt_sonames REPLACE "(.+)" "libQt6\\1.so.6")
  sbom_package(qt Qt ${SBOM_Qt6Quick_VERSION} "LGPL-3.0-only OR GPL-2.0-only OR GPL-3.0-only" "The Qt Company" https://www.qt.io
               SONAMES ${qt_sonames})
  sbom_part(quick libkorvane-quick qt)
  sbom_part(plugin libkorvane_quickplugin qt)
endif()

string(TIMESTAMP created UTC)
get_property(packages GLOBAL PROPERTY KORVANE_SBOM_PACKAGES)
get_property(relationships GLOBAL PROPERTY KORVANE_SBOM_RELATIONSHIPS)
# Two builds with the same parts are the same document, and only those.
string(UUID document NAMESPACE 6ba7b811-9dad-11d1-80b4-00c04fd430c8 NAME "${packages}${relationships}" TYPE SHA1)
configure_file(cmake/korvane.spdx.json.in korvane.spdx.json @ONLY)
