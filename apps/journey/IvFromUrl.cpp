// SPDX-License-Identifier: Apache-2.0
#include "IvFromUrl.h"

#include <curl/curl.h>

#include <chrono>
#include <memory>

#include "common/HostAnswer.h"

namespace korvane {
namespace {

template <class T>
using Released = std::unique_ptr<T, void (*)(T*)>;

}  // namespace

IvFromUrl::~IvFromUrl() {
    stopping_ = true;
}

void IvFromUrl::supply(void* self, korvane_iv_request* request) {
    auto& asking = static_cast<IvFromUrl*>(self)->asking_;
    std::erase_if(asking, [](const auto& question) {
        return question.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    });
    asking.push_back(std::async(std::launch::async, &IvFromUrl::ask, static_cast<IvFromUrl*>(self), request));
}

void IvFromUrl::ask(korvane_iv_request* request) const {
    const auto iv = ivOf(readHostAnswer(post()));
    korvane_iv_supply(request, iv ? iv->id.c_str() : nullptr, iv ? iv->bytes.c_str() : nullptr);
}

std::string IvFromUrl::post() const {
    const Released<CURL> curl(curl_easy_init(), &curl_easy_cleanup);
    if (!curl) return {};
    const Released<curl_slist> headers(curl_slist_append(nullptr, "Content-Type: application/json"),
                                       &curl_slist_free_all);
    std::string body;
    const auto keep = +[](char* bytes, std::size_t, std::size_t count, std::string* into) {
        const bool fits = count <= longestHostAnswer - into->size();
        if (fits) into->append(bytes, count);
        return fits ? count : count + 1;  // anything but the count is an error to curl
    };
    const auto stopped = +[](const std::atomic<bool>* stopping, curl_off_t, curl_off_t, curl_off_t,
                             curl_off_t) { return stopping->load() ? 1 : 0; };
    curl_easy_setopt(curl.get(), CURLOPT_URL, url_.c_str());
    curl_easy_setopt(curl.get(), CURLOPT_POSTFIELDS, "{}");
    curl_easy_setopt(curl.get(), CURLOPT_HTTPHEADER, headers.get());
    if (!caFile_.empty()) curl_easy_setopt(curl.get(), CURLOPT_CAINFO, caFile_.c_str());
    curl_easy_setopt(curl.get(), CURLOPT_TIMEOUT, 30L);
    curl_easy_setopt(curl.get(), CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl.get(), CURLOPT_FAILONERROR, 1L);
    curl_easy_setopt(curl.get(), CURLOPT_WRITEFUNCTION, keep);
    curl_easy_setopt(curl.get(), CURLOPT_WRITEDATA, &body);
    curl_easy_setopt(curl.get(), CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(curl.get(), CURLOPT_XFERINFOFUNCTION, stopped);
    curl_easy_setopt(curl.get(), CURLOPT_XFERINFODATA, &stopping_);
    return curl_easy_perform(curl.get()) == CURLE_OK ? body : std::string{};
}

}  // namespace korvane
