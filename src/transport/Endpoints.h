// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace korvane {

enum class EndpointId : std::size_t {
    bearerToken,
    pciTokenRequest,
    pciTokenSubmission,
    pinSet,
    getCardStatus,
    setCardStatus,
    cardImage,
    physicalCardActivationAndPinSet,
    virtualCardActivationAndPinSet,
    wearableCardActivationAndPinSet,
};

inline constexpr std::size_t endpointCount = 10;

/// One endpoint of the card service. All are called with POST.
struct Endpoint {
    std::string_view method;  ///< the method of `API` that calls it, as console lines name it
    std::string_view path;
    bool bearer;           ///< carries the bearer token, and renews it on 401
    bool changes = false;  ///< the service carries something out; see `RequestParts::changes`
    std::array<std::string_view, 5>
        keys{};               ///< of the enciphered values, in the body's order; "" from the last on
    bool printsBody = false;  ///< on the console, before each sending
    std::string_view reAuthDash = " - ";  ///< between the method's name and the rest in one console line
};

const Endpoint& endpoint(EndpointId id);

}  // namespace korvane
