// SPDX-License-Identifier: Apache-2.0
#include "sandbox/Faults.h"

#include <algorithm>
#include <array>
#include <limits>

namespace korvane::sandbox {
namespace {

using Effect = FaultRule::Effect;

struct EffectKey {
    std::string_view key;
    Effect effect;
};

constexpr std::array<EffectKey, 4> flags{{
    {"reset", Effect::reset},
    {"expireIv", Effect::expireIv},
    {"expirePciToken", Effect::expirePciToken},
    {"expireBearer", Effect::expireBearer},
}};
constexpr std::array<EffectKey, 2> texts{{{"result", Effect::result}, {"body", Effect::body}}};

/// Takes the value of one key into the rule; answers what is wrong with it, or "".
std::string take(FaultRule& rule, const std::string& key, const JsonValue& value) {
    const auto whole = [&](std::int64_t least, std::int64_t most, auto store) -> std::string {
        const auto* number = std::get_if<std::int64_t>(&value);
        if (!number || *number < least || *number > most) {
            return "\"" + key + "\" is no whole number from " + std::to_string(least) + " to " +
                   std::to_string(most);
        }
        store(*number);
        return {};
    };
    const auto effect = [&](Effect wanted) -> std::string {
        if (rule.effect != Effect::none && rule.effect != Effect::status) return "more than one effect";
        rule.effect = wanted;
        return {};
    };
    if (key == "count") {
        return whole(1, std::numeric_limits<std::int64_t>::max(), [&](std::int64_t n) { rule.count = n; });
    }
    if (key == "delayMs") {
        return whole(0, 600000, [&](std::int64_t n) { rule.delay = std::chrono::milliseconds(n); });
    }
    if (key == "status") {
        if (rule.effect == Effect::none) rule.effect = Effect::status;
        return whole(200, 599, [&](std::int64_t n) { rule.status = static_cast<int>(n); });
    }
    if (const auto row = std::ranges::find(texts, key, &EffectKey::key); row != texts.end()) {
        const auto* text = std::get_if<std::string>(&value);
        if (!text) return "\"" + key + "\" is not a text";
        rule.text = *text;
        return effect(row->effect);
    }
    if (const auto row = std::ranges::find(flags, key, &EffectKey::key); row != flags.end()) {
        const auto* flag = std::get_if<bool>(&value);
        if (!flag || !*flag) return "\"" + key + "\" takes true";
        return effect(row->effect);
    }
    return "unexpected key \"" + key + "\"";
}

}  // namespace

bool FaultRule::appliesTo(const Endpoint& candidate) const {
    if (endpoint != "*" && endpoint != candidate.name) return false;
    if (effect == Effect::expirePciToken) return candidate.carriesPciToken();
    if (effect == Effect::expireBearer) return candidate.needsBearerToken;
    return true;
}

Outcome<FaultRule> readFaultRule(const JsonObject& object) {
    FaultRule rule;
    bool hasStatus = false;
    bool hasDelay = false;
    for (const auto& [key, value] : object) {
        if (key == "endpoint") {
            const auto* name = std::get_if<std::string>(&value);
            if (!name || (*name != "*" && !endpointNamed(*name))) {
                return Failure{"\"endpoint\" is neither the name of an endpoint nor \"*\""};
            }
            rule.endpoint = *name;
            continue;
        }
        hasStatus = hasStatus || key == "status";
        hasDelay = hasDelay || key == "delayMs";
        if (std::string reason = take(rule, key, value); !reason.empty()) return Failure{reason};
    }
    if (rule.endpoint.empty()) return Failure{"missing key \"endpoint\""};
    if (rule.effect == Effect::none && !hasDelay) return Failure{"the rule has no effect"};
    const bool answers =
        rule.effect == Effect::status || rule.effect == Effect::result || rule.effect == Effect::body;
    if (hasStatus && !answers) return Failure{"\"status\" goes with \"result\" or \"body\", or alone"};
    if (rule.endpoint != "*" && !rule.appliesTo(*endpointNamed(rule.endpoint))) {
        return Failure{"requests to " + rule.endpoint + " carry no such token"};
    }
    return rule;
}

std::optional<FaultRule> Faults::take(const Endpoint& endpoint) {
    const auto found =
        std::ranges::find_if(rules_, [&](const FaultRule& rule) { return rule.appliesTo(endpoint); });
    if (found == rules_.end()) return std::nullopt;
    FaultRule rule = *found;
    if (--found->count == 0) rules_.erase(found);
    return rule;
}

}  // namespace korvane::sandbox
