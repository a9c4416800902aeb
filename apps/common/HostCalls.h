// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <rapidjson/document.h>

#include <functional>
#include <list>
#include <memory>
#include <string>

#include <korvane/platform/UrlSession.h>

namespace korvane {

/// The host's own requests, through the installed `UrlSession`. Main thread only; owned by a shared pointer,
/// and answers that come when it is gone are dropped.
class HostCalls : public std::enable_shared_from_this<HostCalls> {
  public:
    /// Null when there was no answer, none with status 200, or none that is JSON.
    using Answer = std::function<void(const rapidjson::Document&)>;

    /// Sends `body`, which is JSON or empty. `answer` runs on the main thread, never from inside this call.
    void start(const std::string& method, const std::string& url, const std::string& body,
               const Answer& answer);

  private:
    std::list<std::unique_ptr<UrlTask>> tasks_;  // each keeps its handle until it is answered
};

}  // namespace korvane
