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

void leadOn(JourneyState& state, const KorvaneRetStruct& failure, const std::shared_ptr<void>& owner,
            Recovery& recovery, FailureHandlers handlers) {
    const FailureRoute route = routeOf(failure);
    if (route.kind == Kind::verifyBySMS || route.kind == Kind::errorPage) {
        recovery.backoff.reset();
        return route.kind == Kind::errorPage ? handlers.giveUp() : handlers.verifyBySMS(route.matched);
    }
    const char* const reason = route.kind == Kind::ivExpired ? "iv expired" : "iv invalid";
    recovery.underWay = obtainIv(
        state.sdk, IvReason::refused,
        [weak = std::weak_ptr(owner), &recovery, handlers = std::move(handlers), reason](const auto& noIv) {
            const auto alive = weak.lock();
            if (!alive) return;
            if (noIv) return handlers.giveUp();
            recovery.backoff.repeat(recovery.underWay, [weak, handlers, reason] {
                if (const auto still = weak.lock()) handlers.runAgain(reason);
            });
        });
}

}  // namespace korvane
