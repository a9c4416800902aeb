// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <curl/curl.h>
#include <openssl/ssl.h>

#include <string>

/// The functions of libcurl in use, without the "curl_" that they all begin with.
#define KORVANE_CURL_FUNCTIONS(USE) \
    USE(easy_cleanup)               \
    USE(easy_getinfo)               \
    USE(easy_init)                  \
    USE(easy_option_by_id)          \
    USE(easy_setopt)                \
    USE(easy_strerror)              \
    USE(free)                       \
    USE(global_init)                \
    USE(multi_add_handle)           \
    USE(multi_cleanup)              \
    USE(multi_info_read)            \
    USE(multi_init)                 \
    USE(multi_perform)              \
    USE(multi_poll)                 \
    USE(multi_remove_handle)        \
    USE(slist_append)               \
    USE(slist_free_all)             \
    USE(url)                        \
    USE(url_cleanup)                \
    USE(url_get)                    \
    USE(url_set)                    \
    USE(version_info)

namespace korvane {

/// libcurl, loaded when the first request needs it. It brings a dozen libraries with it, which an app would
/// otherwise load before its first frame and hold in memory though no journey was opened.
struct CurlLibrary {
    /// Why there is none to use, and then no function may be called; "" when all is well.
    std::string failure;

// NOLINTNEXTLINE(bugprone-macro-parentheses): the name is declared
#define KORVANE_CURL_POINTER(name) decltype(&curl_##name) name = nullptr;
    KORVANE_CURL_FUNCTIONS(KORVANE_CURL_POINTER)
#undef KORVANE_CURL_POINTER

    /// Of the TLS library that libcurl uses; null when that is not OpenSSL.
    decltype(&SSL_CTX_set_keylog_callback) setKeylogCallback = nullptr;
};

/// Loads and starts libcurl at the first call, which takes milliseconds, and never unloads it: the host may
/// use it as well. Any thread, but the main one should not wait for it.
const CurlLibrary& curl();

}  // namespace korvane
