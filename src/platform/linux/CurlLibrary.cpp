// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/CurlLibrary.h"

#include <dlfcn.h>

namespace korvane {
namespace {

template <class Function>
void find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
}

CurlLibrary load() {
    CurlLibrary curl;
    void* const library = dlopen("libcurl.so.4", RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        curl.failure = std::string("libcurl cannot be loaded: ") + dlerror();
        return curl;
    }
#define KORVANE_CURL_FIND(name)                      \
    find(library, "curl_" #name, curl.name);         \
    if (!curl.name && curl.failure.empty()) {        \
        curl.failure = "libcurl has no curl_" #name; \
    }
    KORVANE_CURL_FUNCTIONS(KORVANE_CURL_FIND)
#undef KORVANE_CURL_FIND
    find(library, "SSL_CTX_set_keylog_callback", curl.setKeylogCallback);
    if (!curl.failure.empty()) return curl;

    const curl_version_info_data& version = *curl.version_info(CURLVERSION_NOW);
    if (version.version_num < 0x075700) {  // which can give up a name look-up without waiting for its end
        curl.failure = std::string("libcurl is too old: ") + version.version + ", needed is 7.87.0";
        return curl;
    }
    // Any thread will do, as libcurl guards its own start (since 7.84). It is never undone: the host may use
    // libcurl as well.
    if (const CURLcode started = curl.global_init(CURL_GLOBAL_DEFAULT); started != CURLE_OK) {
        curl.failure = std::string("libcurl cannot start: ") + curl.easy_strerror(started);
    }
    return curl;
}

}  // namespace

const CurlLibrary& curl() {
    static const CurlLibrary library = load();
    return library;
}

}  // namespace korvane
