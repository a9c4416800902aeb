// SPDX-License-Identifier: Apache-2.0
#include "flows/FailureRoute.h"

#include <array>

#include "base/Text.h"

namespace korvane {
namespace {

using Road = FailureRoute::Road;

constexpr std::array<FailureRoute, 5> routes{{
    {Road::verifyBySMS, readFromKeychainFailed},
    {Road::verifyBySMS, "Failure: Invalid Token"},
    {Road::verifyBySMS, "Failure: Expired Token"},
    {Road::ivExpired, "Failure: IV is expired"},
    {Road::ivInvalid, "Failure: Invalid offsetId"},
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

bool isServerErrorOnEmptyToken(const KorvaneRetStruct& failure, std::string_view currentPciToken) {
    return currentPciToken.empty() && equalIgnoringCase(failure.errorMsg, "500 error");
}

}  // namespace korvane
