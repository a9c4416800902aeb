// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace korvane {

/// One HTTP request, whole.
struct UrlRequest {
    std::string method;  ///< "POST"
    std::string url;     ///< absolute, "https://…"
    /// Names and values, beside those that the session sends by itself. Blanks around a value are not sent
    /// (RFC 9113, 8.2.1): before the first bearer token there is "Bearer ".
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;  ///< sent as it is
};

/// `UrlReply::failureCode` of a request that the platform cancelled by itself.
inline constexpr int urlRequestCancelled = -999;
/// `UrlReply::failureCode` of every other request without a whole answer.
inline constexpr int urlRequestFailed = -1;

/// The result of a request: an HTTP answer, or the reason why there is none.
struct UrlReply {
    int status = 0;       ///< HTTP status of the answer; 0 when no whole answer came
    std::string body;     ///< the answer's body, as received; empty when no whole answer came
    std::string failure;  ///< why no whole answer came (for the log only); empty when one did
    /// Why no whole answer came, for decisions: `urlRequestCancelled` or `urlRequestFailed`. Ignored when one
    /// did; any other value counts as `urlRequestFailed`.
    int failureCode = urlRequestFailed;

    /// A whole HTTP answer came, whatever its status.
    bool answered() const { return status != 0; }
};

/// A request under way. Releasing it cancels the request: once the destructor returns, the reply callback
/// neither runs nor will run. (Released inside its own reply callback, the callback just finishes.)
class UrlTask {
  public:
    virtual ~UrlTask() = default;
};

/// HTTP data tasks. Implementations verify the server's certificate and host name, send plain HTTP to this
/// machine alone, follow no redirect, and refuse an answer of more than 32 MiB. They give up when no data
/// came for 60 s, when connecting took 30 s, and after 10 minutes.
class UrlSession {
  public:
    virtual ~UrlSession() = default;

    /// Starts a request. `reply` runs at most once, on any thread, never from inside this call; every failure
    /// (name not found, refused, reset, TLS, time-out, too large) is a reply that is not `answered()`.
    /// Main thread only; the caller owns the task. Tasks may outlive the session: then their replies never
    /// run.
    virtual std::unique_ptr<UrlTask> start(UrlRequest request, std::function<void(UrlReply)> reply) = 0;
};

}  // namespace korvane
