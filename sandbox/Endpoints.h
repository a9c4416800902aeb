// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "sandbox/State.h"
#include "sandbox/WireRequest.h"

namespace korvane::sandbox {

/// What an endpoint answers, in clear.
struct Reply {
    int status = 200;
    std::string result = "Success";
    std::vector<std::pair<std::string, std::string>> fields;  ///< beside the result, under their wire keys
    std::optional<Sms> sms;                                   ///< was sent by the request
};

/// Does what the endpoint does. `plain` holds all its enciphered fields in clear, `iv` those that the request
/// was enciphered under. The caller holds the state's mutex. Throws DatabaseError.
Reply runEndpoint(State& state, const Endpoint& endpoint, const Fields& plain, const Iv& iv);

}  // namespace korvane::sandbox
