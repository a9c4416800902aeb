// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/CurlTransfer.h"

#include <arpa/inet.h>
#include <openssl/ssl.h>
#include <strings.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

#include "base/Secret.h"
#include "base/Text.h"

namespace korvane {
namespace {

bool hasControlCharacter(std::string_view text) {
    return std::ranges::any_of(text, [](unsigned char c) { return c < 0x20 || c == 0x7F; });
}

/// Blanks around a value are no part of it (RFC 9110, 5.5), and make a request malformed in HTTP/2 (RFC 9113,
/// 8.2.1).
std::string_view withoutBlanks(std::string_view value) {
    constexpr std::string_view blanks = " \t";
    value.remove_prefix(std::min(value.find_first_not_of(blanks), value.size()));
    return value.substr(0, value.find_last_not_of(blanks) + 1);
}

/// libcurl hands all TLS secrets to the file named by the environment variable SSLKEYLOGFILE. Not ours.
CURLcode keepTlsSecrets(CURL*, void* context, void*) {
    SSL_CTX_set_keylog_callback(static_cast<SSL_CTX*>(context), nullptr);
    return CURLE_OK;
}

bool isLoopback(std::string host) {
    if (host.starts_with('[')) host = host.substr(1, host.size() - 2);
    std::array<unsigned char, 4> address{};
    return equalIgnoringCase(host, "localhost") || host == "::1" ||
           (inet_pton(AF_INET, host.c_str(), address.data()) == 1 && address[0] == 127);
}

/// True when others than this machine would see the request in clear. A URL that libcurl cannot read is left
/// for it to refuse.
bool showsItself(const std::string& url, const std::string& proxy) {
    const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> parts{curl_url(), curl_url_cleanup};
    const auto part = [&parts](CURLUPart which) {
        char* text = nullptr;
        std::string copy = curl_url_get(parts.get(), which, &text, 0) == CURLUE_OK ? text : "";
        curl_free(text);
        return copy;
    };
    if (!parts || curl_url_set(parts.get(), CURLUPART_URL, url.c_str(), CURLU_DEFAULT_SCHEME) != CURLUE_OK) {
        return false;
    }
    return part(CURLUPART_SCHEME) == "http" && !(proxy.empty() && isLoopback(part(CURLUPART_HOST)));
}

/// Appends, and wipes what a growing text leaves behind.
void appendWiped(std::string& text, std::string_view more) {
    if (text.capacity() - text.size() < more.size()) {
        std::string larger;
        larger.reserve(std::max(2 * text.capacity(), text.size() + more.size()));
        larger = text;
        text.swap(larger);
        wipe(larger);
    }
    text.append(more);
}

std::string start() {
    const curl_version_info_data& version = *curl_version_info(CURLVERSION_NOW);
    if (version.version_num < 0x075700)  // which can give up a name look-up without waiting for its end
        return std::string("libcurl is too old: ") + version.version + ", needed is 7.87.0";
    if (!std::string_view(version.ssl_version ? version.ssl_version : "").starts_with("OpenSSL/3"))
        return "libcurl does not use OpenSSL 3";
    // Any thread will do, as libcurl guards its own start (since 7.84). It is never undone: the host may use
    // libcurl as well.
    const CURLcode started = curl_global_init(CURL_GLOBAL_DEFAULT);
    return started == CURLE_OK ? "" : std::string("libcurl cannot start: ") + curl_easy_strerror(started);
}

}  // namespace

const std::string& startCurl() {
    static const std::string failure = start();
    return failure;
}

CurlTransfer::CurlTransfer(UrlRequest request, const CurlUrlSessionOptions& options)
    : request_(std::move(request)), easy_(curl_easy_init()) {
    if (!easy_) {
        refusal_ = "out of memory";
        return;
    }
    if (hasControlCharacter(request_.url) || hasControlCharacter(request_.method)) {
        refusal_ = "the URL or the method has a control character";
        return;
    }
    if (showsItself(request_.url, options.proxy)) {
        refusal_ = "plain HTTP is for a service on this machine alone: the URL needs https";
        return;
    }
    set(CURLOPT_ERRORBUFFER, error_.data());
    set(CURLOPT_WRITEFUNCTION, &CurlTransfer::receive);
    set(CURLOPT_WRITEDATA, this);
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(options.connectTimeout.count()));
    set(CURLOPT_TIMEOUT_MS, static_cast<long>(options.longestTransfer.count()));
    set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(longestBody));
    set(CURLOPT_TCP_NODELAY, 1L);
    set(CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_2TLS});

    set(CURLOPT_URL, request_.url.c_str());
    if (request_.method == "HEAD") {
        set(CURLOPT_NOBODY, 1L);
    } else if (request_.method != "GET" || !request_.body.empty()) {
        set(CURLOPT_POST, 1L);
        // Lent, not copied. Head and body go in one segment then (HTTP/1.1), where a body from a callback
        // would follow in a second one: 8 us of a loopback call's 60, as the service wakes up twice.
        set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request_.body.size()));
        set(CURLOPT_POSTFIELDS, request_.body.data());
        set(CURLOPT_PREREQFUNCTION, &CurlTransfer::mayBeSent);
        set(CURLOPT_PREREQDATA, easy_);
        set(CURLOPT_CUSTOMREQUEST, request_.method.c_str());
    }
    setSecurity(options);
    addHeaders();
}

CurlTransfer::~CurlTransfer() {
    curl_easy_cleanup(easy_);
    for (const curl_slist* header = headers_; header; header = header->next) {
        explicit_bzero(header->data, std::strlen(header->data));
    }
    curl_slist_free_all(headers_);
    for (auto& header : request_.headers) wipe(header.second);
    wipe(request_.body);
    wipe(reply_.body);
}

/// A setting that libcurl does not take refuses the request: nothing is sent with less than we ask for.
template <class Value>
void CurlTransfer::set(CURLoption option, Value value) {
    const CURLcode code = curl_easy_setopt(easy_, option, value);
    if (code != CURLE_OK && refusal_.empty()) {
        const curl_easyoption* known = curl_easy_option_by_id(option);
        refusal_ = std::string("cannot set ") + (known ? known->name : "an option") + ": " +
                   curl_easy_strerror(code);
    }
}

void CurlTransfer::setSecurity(const CurlUrlSessionOptions& options) {
    set(CURLOPT_SSL_VERIFYPEER, 1L);
    set(CURLOPT_SSL_VERIFYHOST, 2L);
    set(CURLOPT_SSLVERSION, long{CURL_SSLVERSION_TLSv1_2});
    if (!options.caFile.empty()) {
        set(CURLOPT_CAINFO, options.caFile.c_str());
        set(CURLOPT_CAPATH,
            static_cast<const char*>(nullptr));  // the system's directory would be trusted beside it
    }
    set(CURLOPT_SSL_CTX_FUNCTION, &keepTlsSecrets);
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_DEFAULT_PROTOCOL,
        "https");                     // libcurl would guess from the host's name, and plain HTTP at last
    set(CURLOPT_FOLLOWLOCATION, 0L);  // a bearer token never travels to another host
    set(CURLOPT_PROXY, options.proxy.c_str());
}

void CurlTransfer::addHeaders() {
    const auto add = [this](std::string line) {
        if (curl_slist* longer = curl_slist_append(headers_, line.c_str()))
            headers_ = longer;
        else
            refusal_ = "out of memory";
        wipe(line);
    };
    bool hasType = false;
    for (const auto& [name, given] : request_.headers) {
        const std::string_view value = withoutBlanks(given);
        if (name.empty() || hasControlCharacter(name) || hasControlCharacter(value)) {
            // A line break in a value would make further headers of the rest.
            refusal_ = "a header has no name or a control character";
            return;
        }
        hasType = hasType || strcasecmp(name.c_str(), "Content-Type") == 0;
        // An empty header is written with a semicolon.
        add(value.empty() ? name + ";" : name + ": " + std::string(value));
    }
    add("Expect:");  // a large body is sent at once; libcurl would wait a second for leave
    if (!hasType) add("Content-Type:");  // none, where libcurl would claim a web form
    set(CURLOPT_HTTPHEADER, headers_);
}

/// Asked before each sending. libcurl sends a request once more, by itself, when a kept connection is dropped
/// unanswered; but one that may have been carried out already is not to be repeated unasked (RFC
/// 9110, 9.2.2).
int CurlTransfer::mayBeSent(void* easy, char*, char*, int, int) {
    long sent = 0;
    curl_easy_getinfo(static_cast<CURL*>(easy), CURLINFO_REQUEST_SIZE, &sent);
    return sent == 0 ? CURL_PREREQFUNC_OK : CURL_PREREQFUNC_ABORT;
}

std::size_t CurlTransfer::receive(char* data, std::size_t, std::size_t size, void* self) {
    auto& transfer = *static_cast<CurlTransfer*>(self);
    if (size > longestBody - transfer.reply_.body.size()) {
        transfer.tooLong_ = true;
        return 0;  // less than was offered ends the transfer
    }
    curl_off_t announced = -1;
    if (transfer.reply_.body.empty() &&
        curl_easy_getinfo(transfer.easy_, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &announced) == CURLE_OK &&
        announced > 0) {
        transfer.reply_.body.reserve(std::min(static_cast<std::size_t>(announced), longestBody));
    }
    appendWiped(transfer.reply_.body, {data, size});
    return size;
}

std::int64_t CurlTransfer::moved() const {
    curl_off_t up = 0, down = 0;
    long head = 0, request = 0;
    curl_easy_getinfo(easy_, CURLINFO_SIZE_UPLOAD_T, &up);
    curl_easy_getinfo(easy_, CURLINFO_SIZE_DOWNLOAD_T, &down);
    curl_easy_getinfo(easy_, CURLINFO_HEADER_SIZE, &head);
    curl_easy_getinfo(easy_, CURLINFO_REQUEST_SIZE, &request);
    return up + down + head + request;
}

bool CurlTransfer::isConnected() const {
    curl_off_t time = 0;
    return curl_easy_getinfo(easy_, CURLINFO_PRETRANSFER_TIME_T, &time) == CURLE_OK && time > 0;
}

UrlReply CurlTransfer::finish(CURLcode result) {
    if (result == CURLE_OK) {
        long status = 0;
        curl_easy_getinfo(easy_, CURLINFO_RESPONSE_CODE, &status);
        reply_.status = static_cast<int>(status);
        return std::exchange(reply_, {});
    }
    UrlReply none;
    if (tooLong_ || result == CURLE_FILESIZE_EXCEEDED) {
        none.failure = "the answer is longer than 32 MiB";
    } else {
        none.failure = error_[0] != '\0' ? error_.data() : curl_easy_strerror(result);
    }
    return none;
}

}  // namespace korvane
