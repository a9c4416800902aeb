// SPDX-License-Identifier: Apache-2.0
#include <sstream>

#include "tests/explorer/World.h"

namespace korvane::explorer {
namespace {

/// What is in a call that is not the cardholder's own, or "".
std::string strange(const std::string& call, const Person& own, bool isEnciphered) {
    const std::map<std::string_view, std::string_view> owns{{"CardId", own.card},
                                                            {"PIN", own.pin},
                                                            {"LastFourOfPan", own.lastFour},
                                                            {"CVV", own.cvv},
                                                            {"TwoFactorCode", own.code},
                                                            {"PciSmsToken", own.smsToken}};
    std::istringstream words(call);
    for (std::string word; words >> word;) {
        const std::size_t equals = std::min(word.size(), word.find('='));
        const auto field = owns.find(word.substr(0, equals));
        // Under a host's IV of another size everything is sent empty.
        if (field != owns.end() && isEnciphered && word.substr(equals + 1) != field->second) return word;
    }
    return {};
}

}  // namespace

std::string wrongBetween(const Before& before, const Step& step, const World& world) {
    const std::size_t requests = world.device.urlSession->startedCount();
    for (std::size_t i = before.requests; i < requests; ++i) {
        const std::string call = world.sent(i);
        const std::string word =
            strange(call, *world.actors()[step.actor].person, world.config.ivByteArray.size() == 16);
        if (!word.empty()) return "sends " + word + " in " + call.substr(0, call.find(' '));
    }
    for (std::size_t i = 0; i < world.actors().size(); ++i) {
        const Actor& actor = world.actors()[i];
        if (actor.isGone() && !actor.state.expired()) return "the journey's state outlives the journey";
        if (i == step.actor || step.does == Step::Does::wait) continue;
        if (!actor.closedWith.empty()) return "closes the other journey with " + actor.closedWith;
        if (actor.everything() != before.everything[i]) return "changes the other journey";
    }
    const Actor& actor = world.actors()[step.actor];
    const bool isOver = actor.isGone() && step.does != Step::Does::answer;
    if (isOver && requests != before.requests) return "calls when the journey ends";
    if (!before.isLate) return {};
    if (requests != before.requests) return "calls though the screen that asked is gone";
    if (actor.everything() != before.everything[step.actor]) return "a late answer changes the journey";
    if (world.process() != before.process) return "a late answer changes what is shared";
    const auto lines = world.device.console->lines();
    return lines.empty() ? "" : "a late answer is told: " + lines.front();
}

}  // namespace korvane::explorer
