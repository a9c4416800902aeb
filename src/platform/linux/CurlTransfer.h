// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <curl/curl.h>

#include <array>
#include <cstdint>
#include <string>

#include "platform/linux/CurlUrlSession.h"

namespace korvane {

/// Starts libcurl at the first call, which takes milliseconds. Gives why it cannot be used; "" when it can.
/// Any thread, but the main one should not wait for it.
const std::string& startCurl();

/// One request on a libcurl easy handle, and the answer as it comes in. Worker thread only; `startCurl` must
/// have succeeded.
class CurlTransfer {
  public:
    static constexpr std::size_t longestBody = std::size_t{32} << 20;

    /// Makes a handle that is ready to be added to a multi handle.
    CurlTransfer(UrlRequest request, const CurlUrlSessionOptions& options);
    /// The handle must have been taken out of its multi handle.
    ~CurlTransfer();
    CurlTransfer(const CurlTransfer&) = delete;
    CurlTransfer& operator=(const CurlTransfer&) = delete;

    CURL* easy() const { return easy_; }

    /// Why the request cannot be sent at all; "" when it can.
    const std::string& refusal() const { return refusal_; }

    /// Bytes of data sent and received so far: grows as long as the transfer makes progress.
    std::int64_t moved() const;
    /// Name look-up, connecting and TLS handshake are over.
    bool isConnected() const;

    /// The reply of a transfer that ended with `result`.
    UrlReply finish(CURLcode result);

  private:
    template <class Value>
    void set(CURLoption option, Value value);
    void addHeaders();
    void setSecurity(const CurlUrlSessionOptions& options);
    static int mayBeSent(void* easy, char*, char*, int, int);
    static std::size_t receive(char* data, std::size_t, std::size_t size, void* self);

    UrlRequest request_;
    UrlReply reply_;
    std::string refusal_;
    std::array<char, CURL_ERROR_SIZE> error_{};
    bool tooLong_ = false;
    curl_slist* headers_ = nullptr;
    CURL* easy_;
};

}  // namespace korvane
