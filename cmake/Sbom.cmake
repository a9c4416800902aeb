# SPDX-License-Identifier: Apache-2.0
# korvane.spdx.json: the bill of materials (SPDX 2.3), with the versions that this build found.

# sbom_package(id name version licence supplier url): one package of the document.
function(sbom_package id name version licence supplier url)
  cmake_parse_arguments(arg "" "" "SONAMES" ${ARGN})
  set(references "")
  foreach(soname IN LISTS arg_SONAMES)
    list(APPEND references
         "{\"referenceCategory\": \"OTHER\", \"referenceType\": \"soname\", \"referenceLocator\": \"${soname}\"}")
  endforeach()
  list(JOIN references ", " references)
  set_property(GLOBAL APPEND_STRING PROPERTY KORVANE_SBOM_PACKAGES ",
    {\"SPDXID\": \"SPDXRef-${id}\", \"name\": \"${name}\", \"versionInfo\": \"${version}\", \"supplier\": \"Organization: ${supplier}\",
     \"downloadLocation\": \"${url}\", \"filesAnalyzed\": false, \"licenseConcluded\": \"${licence}\",
     \"licenseDeclared\": \"${licence}\", \"copyrightText\": \"NOASSERTION\", \"externalRefs\": [${references}]}")
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
sbom_package(rapidjson RapidJSON ${rapidjson_version} MIT "THL A29 Limited" https://rapidjson.org)  # headers alone
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
sbom_part(journey korvane-journey curl glib)
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
