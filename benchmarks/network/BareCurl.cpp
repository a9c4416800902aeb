// SPDX-License-Identifier: Apache-2.0
#include <curl/curl.h>

#include "benchmarks/network/Clients.h"
#include "benchmarks/support/Fatal.h"

namespace korvane::bench {
namespace {

class BareCurl final : public Client {
  public:
    explicit BareCurl(const Call& call) : body_(call.request.body) {
        for (const auto& [name, value] : call.request.headers)
            headers_ = curl_slist_append(headers_, (name + ": " + value).c_str());
        headers_ = curl_slist_append(headers_, "Expect:");
        curl_easy_setopt(easy_, CURLOPT_URL, call.request.url.c_str());
        curl_easy_setopt(easy_, CURLOPT_HTTPHEADER, headers_);
        curl_easy_setopt(easy_, CURLOPT_POSTFIELDS, body_.data());
        curl_easy_setopt(easy_, CURLOPT_POSTFIELDSIZE, static_cast<long>(body_.size()));
        curl_easy_setopt(easy_, CURLOPT_WRITEFUNCTION, &BareCurl::receive);
        curl_easy_setopt(easy_, CURLOPT_WRITEDATA, &answer_);
        curl_easy_setopt(easy_, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(easy_, CURLOPT_PROXY, "");
        if (!call.caFile.empty()) curl_easy_setopt(easy_, CURLOPT_CAINFO, call.caFile.c_str());
    }
    ~BareCurl() override {
        curl_easy_cleanup(easy_);
        curl_slist_free_all(headers_);
    }
    BareCurl(const BareCurl&) = delete;
    BareCurl& operator=(const BareCurl&) = delete;

    void setPin() override {
        answer_.clear();
        const CURLcode code = curl_easy_perform(easy_);
        require(code == CURLE_OK && !answer_.empty(),
                std::string("the bare handle failed: ") + curl_easy_strerror(code));
    }

  private:
    static std::size_t receive(char* data, std::size_t, std::size_t size, void* answer) {
        static_cast<std::string*>(answer)->append(data, size);
        return size;
    }

    CURL* const easy_ = curl_easy_init();
    curl_slist* headers_ = nullptr;
    const std::string body_;
    std::string answer_;
};

}  // namespace

std::unique_ptr<Client> bareCurl(const Call& call) {
    return std::make_unique<BareCurl>(call);
}

}  // namespace korvane::bench
