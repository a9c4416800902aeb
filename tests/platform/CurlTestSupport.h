// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <thread>
#include <utility>

#include "platform/linux/CurlUrlSession.h"

namespace korvane::testing {

/// Waits for up to 20 s; false when the condition did not come true.
template <class Condition>
bool waitUntil(Condition condition) {
    using namespace std::chrono_literals;
    for (const auto end = std::chrono::steady_clock::now() + 20s; !condition();) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(500us);
    }
    return true;
}

/// Sends the request and waits for its reply.
inline UrlReply fetch(UrlSession& session, UrlRequest request) {
    std::promise<UrlReply> promise;
    auto future = promise.get_future();
    // Released before the promise goes, and so after the reply has ended.
    const auto task = session.start(std::move(request),
                                    [&promise](UrlReply reply) { promise.set_value(std::move(reply)); });
    if (future.wait_for(std::chrono::seconds(50)) != std::future_status::ready) {
        ADD_FAILURE() << "no reply";
        return {};
    }
    return future.get();
}

/// The reply has no answer of the service's, and a text that tells why.
inline void expectFailure(const UrlReply& reply, const std::string& text) {
    EXPECT_EQ(std::to_string(reply.status) + reply.body, "0");
    EXPECT_NE(reply.failure.find(text), std::string::npos) << reply.failure;
}

inline UrlReply post(UrlSession& session, std::string url, std::string body = "{}") {
    return fetch(session, {"POST", std::move(url), {{"Content-Type", "application/json"}}, std::move(body)});
}

}  // namespace korvane::testing
