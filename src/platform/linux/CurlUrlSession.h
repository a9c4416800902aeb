// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>
#include <korvane/platform/UrlSession.h>

#include <chrono>
#include <memory>
#include <string>

namespace korvane {

/// How a session trusts, and how long it waits. The defaults are meant for use.
struct CurlUrlSessionOptions {
    /// PEM file of the authorities to trust in place of the system's; "" trusts the system's.
    std::string caFile = {};
    /// URL of an HTTP proxy; "" goes direct. The environment's proxy variables are not looked at: the
    /// component is configured by arguments alone, and whoever sets a variable should not see where a bank's
    /// app calls.
    std::string proxy = {};
    /// A request gives up when no data came or went for this long. Counted while the device sleeps too.
    std::chrono::milliseconds timeout = std::chrono::seconds(60);
    /// A connection that was idle for longer is not used again. Counted while the device sleeps too: a
    /// connection from before the sleep is often dead without our knowing, and would cost the whole time-out.
    std::chrono::milliseconds connectionIdle = std::chrono::seconds(30);
    /// Name look-up, connecting and TLS handshake together.
    std::chrono::milliseconds connectTimeout = std::chrono::seconds(30);
    /// A request gives up after this, even if it makes progress.
    std::chrono::milliseconds longestTransfer = std::chrono::minutes(10);
};

/// HTTP over libcurl, on one thread of its own that the first request starts. TLS 1.2 or better, HTTP/2 where
/// the server has it, connections kept alive between requests; no cookies, no stored credentials, no content
/// coding. Plain HTTP goes to a service on this machine alone: a card's data in clear on a network is no
/// option that a host should have. Replies run on that thread: they must hand on and return, for they hold up
/// all other requests.
class KORVANE_API CurlUrlSession final : public UrlSession {
  public:
    /// Costs nothing: thread and libcurl start with the first request.
    explicit CurlUrlSession(CurlUrlSessionOptions options = {});
    /// Drops the requests under way. Waits for a reply that is running, but not for the network.
    ~CurlUrlSession() override;

    /// A request that cannot be sent as given (a control character in its URL, method or headers, for
    /// instance) is answered with a failure like any other.
    std::unique_ptr<UrlTask> start(UrlRequest request, std::function<void(UrlReply)> reply) override;

  private:
    class KORVANE_HIDDEN Worker;
    class KORVANE_HIDDEN Task;
    CurlUrlSessionOptions options_;
    std::shared_ptr<Worker> worker_;  // shared with its thread and the tasks; none before the first request
};

}  // namespace korvane
