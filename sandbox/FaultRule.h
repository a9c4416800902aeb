// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/Delivery.h"
#include "sandbox/Json.h"
#include "sandbox/WireRequest.h"

namespace korvane::sandbox {

/// What to do wrong, on which endpoint, for which card, how many times.
struct FaultRule {
    enum class Effect {
        none,  ///< the endpoint does its work
        status,
        result,
        body,
        without,
        expireIv,
        unknownIv,
        expirePciToken,
        expireBearer,
    };
    static constexpr std::int64_t forever = -1;

    std::string endpoint;        ///< a name, or "*"
    std::string card;            ///< "" for every card
    std::int64_t count = 1;      ///< requests that it is still good for
    std::int64_t percent = 100;  ///< of the requests that it fits
    std::mt19937_64 dice;
    std::chrono::milliseconds delay{0};  ///< before anything else is done
    Effect effect = Effect::none;
    int status = 200;   ///< of status, result and body
    std::string text;   ///< the result word, the raw body, or the key that is left out
    Delivery delivery;  ///< none and hang stand in for the endpoint, the others
                        ///< come after its work
    JsonObject source;  ///< as it was given

    bool fits(const Endpoint& candidate, std::string_view cardId) const;
};

/// A key of a rule, for whoever writes one.
struct FaultKey {
    std::string_view name;
    std::string_view takes;
    std::string_view meaning;
};
std::vector<FaultKey> faultKeys();

/// The rules of a JSON object, or of a list of them; see `faultKeys` for what
/// they may say. Fails, naming the rule by its place, on an unknown key, a bad
/// value, or keys that do not go together.
Outcome<std::vector<FaultRule>> readFaultRules(std::string_view json);

}  // namespace korvane::sandbox
