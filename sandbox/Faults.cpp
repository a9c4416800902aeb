// SPDX-License-Identifier: Apache-2.0
#include "sandbox/Faults.h"

#include <algorithm>
#include <iterator>

#include "sandbox/MagicCards.h"

namespace korvane::sandbox {
namespace {

std::optional<FaultRule> takeFrom(std::list<FaultRule>& rules, const Endpoint& endpoint,
                                  std::string_view cardId) {
    const auto found = std::ranges::find_if(rules, [&](FaultRule& rule) {
        if (!rule.fits(endpoint, cardId)) return false;
        return rule.percent == 100 || static_cast<std::int64_t>(rule.dice() % 100) < rule.percent;
    });
    if (found == rules.end()) return std::nullopt;
    FaultRule rule = *found;
    if (found->count != FaultRule::forever && --found->count == 0) rules.erase(found);
    return rule;
}

}  // namespace

Faults::Faults(std::vector<FaultRule> start) : start_(std::move(start)) {
    reset();
    for (const MagicCard& card : magicCards()) {
        auto rules = readFaultRules(magicRule(card));
        std::ranges::move(*rules, std::back_inserter(magic_));
    }
}

void Faults::add(std::vector<FaultRule> rules) {
    std::ranges::move(rules, std::back_inserter(rules_));
}

std::optional<FaultRule> Faults::take(const Endpoint& endpoint, std::string_view cardId) {
    auto rule = takeFrom(rules_, endpoint, cardId);
    return rule ? std::move(rule) : takeFrom(magic_, endpoint, cardId);
}

}  // namespace korvane::sandbox
