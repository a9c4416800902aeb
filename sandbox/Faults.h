// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstdint>
#include <list>
#include <optional>
#include <string>
#include <string_view>

#include "sandbox/Json.h"
#include "sandbox/WireRequest.h"

namespace korvane::sandbox {

/// What to do wrong, on which endpoint, how many times.
struct FaultRule {
    enum class Effect { none, status, result, body, reset, expireIv, expirePciToken, expireBearer };

    std::string endpoint;  ///< a name, or "*"
    std::int64_t count = 1;
    std::chrono::milliseconds delay{0};  ///< before anything else is done
    Effect effect = Effect::none;        ///< none: only the delay
    int status = 200;                    ///< of status, result and body
    std::string text;                    ///< the result word, or the raw body

    bool appliesTo(const Endpoint& candidate) const;
};

/// The rule that the object describes:
///   "endpoint"  a name or "*"; the one key that must be there
///   "count"     how many requests it is good for; 1 when absent
///   "delayMs"   0 to 600000
/// and at most one of "result" (text, enciphered), "body" (text, sent raw), "reset", "expireIv",
/// "expirePciToken", "expireBearer" (each true); "status" (200 to 599) alone or with "result" or "body".
/// Fails with the reason.
Outcome<FaultRule> readFaultRule(const JsonObject& object);

/// The rules in force, oldest first. Not thread-safe.
class Faults {
  public:
    void add(FaultRule rule) { rules_.push_back(std::move(rule)); }
    void clear() { rules_.clear(); }

    /// The first rule for the endpoint; one of its uses is spent.
    std::optional<FaultRule> take(const Endpoint& endpoint);

  private:
    std::list<FaultRule> rules_;
};

}  // namespace korvane::sandbox
