// SPDX-License-Identifier: Apache-2.0
#include "flows/FailureRoute.h"

#include <array>
#include <utility>

#include "base/Text.h"
#include "sdk/JourneyState.h"
#include "transport/IvAcquisition.h"

namespace korvane {
namespace {

using Kind = FailureRoute::Kind;

constexpr std::array<FailureRoute, 5> routes{{
    {Kind::verifyBySMS, readFromKeychainFailed},
    {Kind::verifyBySMS, "Failure: Invalid Token"},
    {Kind::verifyBySMS, "Failure: Expired Token"},
    {Kind::ivExpired, "Failure: IV is expired"},
    {Kind::ivInvalid, "Failure: Invalid offsetId"},
}};

constexpr std::array<std::string_view, 3> refusals{"400 error", "403 error", "500 error"};

std::string_view decidingText(const KorvaneRetStruct& failure) {
    for (const std::string_view refusal : refusals) {
        if (equalIgnoringCase(failure.errorMsg, refusal)) return failure.errorMsgDec;
    }
    return failure.errorMsg;
}

}  // namespace

FailureRoute routeOf(const KorvaneRetStruct& failure) {
    const std::string_view text = decidingText(failure);
    for (const FailureRoute& route : routes) {
        if (equalIgnoringCase(text, route.matched)) return route;
    }
    return {};
}

bool isServerErrorOnEmptyToken(const KorvaneRetStruct& failure, const JourneyState& state) {
    return state.sdk.currentPciToken.empty() && equalIgnoringCase(failure.errorMsg, "500 error");
}

Handle leadOn(JourneyState& state, const KorvaneRetStruct& failure, FailureHandlers handlers) {
    const FailureRoute route = routeOf(failure);
    switch (route.kind) {
        case Kind::verifyBySMS:
            handlers.verifyBySMS(route.matched);
            return nullptr;
        case Kind::errorPage:
            handlers.giveUp();
            return nullptr;
        case Kind::ivExpired:
        case Kind::ivInvalid:
            break;
    }
    const char* const reason = route.kind == Kind::ivExpired ? "iv expired" : "iv invalid";
    return obtainIv(state.sdk, IvReason::refused, [handlers = std::move(handlers), reason](const auto& noIv) {
        noIv ? handlers.giveUp() : handlers.runAgain(reason);
    });
}

}  // namespace korvane
