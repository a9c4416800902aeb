// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "benchmarks/support/LoopbackServer.h"

namespace korvane::bench {

/// A card service whose every answer is enciphered beforehand: an active physical card, an SMS code that is
/// always right. A call without the bearer token is answered with 401.
class CannedService {
  public:
    explicit CannedService(bool tls);

    const LoopbackServer& server() const { return server_; }
    /// Sets the component up for it, as reached under `url`, with a host that has an IV at hand. The ports
    /// must be installed.
    static void initialize(const std::string& url);

    static constexpr const char* bearer = "bench-bearer-token";

  private:
    using Fields = std::vector<std::pair<std::string, std::string>>;

    void answers(const std::string& endpoint, const Fields& fields);
    const std::string& answer(const LoopbackRequest& request) const;

    std::map<std::string, std::string, std::less<>> answers_;  // by path
    const std::string unauthorized_ = answerBytes(401, "{}");
    const std::string unknown_ = answerBytes(404, "{}");
    LoopbackServer server_;  // last: it uses all of the above
};

}  // namespace korvane::bench
