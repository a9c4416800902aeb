// SPDX-License-Identifier: Apache-2.0
#include "sandbox/FaultRule.h"

#include <algorithm>
#include <array>
#include <limits>

namespace korvane::sandbox {
namespace {

using Effect = FaultRule::Effect;
using Kind = Delivery::Kind;

/// Every taker stores a value in the rule, and answers what is wrong with it,
/// or "".
using Value = const JsonValue&;

std::string whole(Value value, std::int64_t least, std::int64_t most, auto store) {
    const auto* number = std::get_if<std::int64_t>(&value);
    if (!number || *number < least || *number > most) {
        return "is no whole number from " + std::to_string(least) + " to " + std::to_string(most);
    }
    store(*number);
    return {};
}

std::string text(Value value, std::string& result) {
    const auto* given = std::get_if<std::string>(&value);
    if (!given) return "is not a text";
    result = *given;
    return {};
}

std::string become(FaultRule& rule, Effect effect) {
    if (rule.effect != Effect::none && rule.effect != Effect::status) return "is more than one effect";
    rule.effect = effect;
    return {};
}

std::string become(FaultRule& rule, Kind kind) {
    if (rule.delivery.kind != Kind::whole && rule.delivery.kind != kind) return "is more than one delivery";
    rule.delivery.kind = kind;
    return {};
}

template <auto what>
std::string flag(FaultRule& rule, Value value) {
    const auto* given = std::get_if<bool>(&value);
    if (!given || !*given) return "takes true";
    return become(rule, what);
}

template <Effect effect>
std::string word(FaultRule& rule, Value value) {
    if (std::string error = text(value, rule.text); !error.empty()) return error;
    return become(rule, effect);
}

template <Kind kind>
std::string bytes(FaultRule& rule, Value value) {
    constexpr std::int64_t most = 1 << 24;
    std::string error =
        whole(value, kind == Kind::drip, most, [&](std::int64_t n) { rule.delivery.bytes = n; });
    return error.empty() ? become(rule, kind) : error;
}

std::string endpoint(FaultRule& rule, Value value) {
    if (std::string error = text(value, rule.endpoint); !error.empty()) return error;
    if (rule.endpoint == "*" || endpointNamed(rule.endpoint)) return {};
    return R"(is neither the name of an endpoint nor "*")";
}

std::string card(FaultRule& rule, Value value) {
    std::string error = text(value, rule.card);
    return error.empty() && rule.card.empty() ? "is empty" : error;
}

std::string count(FaultRule& rule, Value value) {
    if (const auto* word = std::get_if<std::string>(&value); word && *word == "forever") {
        rule.count = FaultRule::forever;
        return {};
    }
    std::string error =
        whole(value, 1, std::numeric_limits<std::int64_t>::max(), [&](std::int64_t n) { rule.count = n; });
    return error.empty() ? error : "is neither \"forever\" nor a whole number from 1 on";
}

std::string percent(FaultRule& rule, Value value) {
    return whole(value, 1, 100, [&](std::int64_t n) { rule.percent = n; });
}

std::string seed(FaultRule& rule, Value value) {
    return whole(value, 0, std::numeric_limits<std::int64_t>::max(),
                 [&](std::int64_t n) { rule.dice.seed(static_cast<std::uint64_t>(n)); });
}

std::string delay(FaultRule& rule, Value value) {
    return whole(value, 0, 600000, [&](std::int64_t n) { rule.delay = std::chrono::milliseconds(n); });
}

std::string status(FaultRule& rule, Value value) {
    if (rule.effect == Effect::none) rule.effect = Effect::status;
    return whole(value, 200, 599, [&](std::int64_t n) { rule.status = static_cast<int>(n); });
}

std::string interval(FaultRule& rule, Value value) {
    return whole(value, 1, 60000,
                 [&](std::int64_t n) { rule.delivery.interval = std::chrono::milliseconds(n); });
}

struct Key : FaultKey {
    std::string (*take)(FaultRule&, Value);
};

constexpr std::array<Key, 20> keys{{
    {{"endpoint", "name or \"*\"", "which requests; the one key that must be there"}, endpoint},
    {{"card", "card id", "those for this card alone"}, card},
    {{"count", "number or \"forever\"", "how often the rule acts; 1 without it"}, count},
    {{"percent", "1 to 100", "acts on so many of a hundred requests, by chance"}, percent},
    {{"seed", "number", "the same chances at every start; goes with percent"}, seed},
    {{"delayMs", "0 to 600000", "waits before anything is done; goes with all others"}, delay},
    {{"status", "200 to 599", "answers {} with this HTTP status; also goes with result and body"}, status},
    {{"result", "text", "answers this result word, enciphered"}, word<Effect::result>},
    {{"body", "text", "answers this body, as it stands"}, word<Effect::body>},
    {{"without", "key", "leaves this key out of the answer"}, word<Effect::without>},
    {{"expireIv", "true", "the request's IV expires"}, flag<Effect::expireIv>},
    {{"unknownIv", "true", "the request's IV is forgotten"}, flag<Effect::unknownIv>},
    {{"expirePciToken", "true", "the request's PCI token expires"}, flag<Effect::expirePciToken>},
    {{"expireBearer", "true", "the request's bearer token expires: 401"}, flag<Effect::expireBearer>},
    {{"reset", "true", "does nothing, and resets the connection"}, flag<Kind::none>},
    {{"hang", "true", "does nothing, and never answers"}, flag<Kind::hang>},
    {{"cutAfter", "bytes", "closes the connection after so much of the body"}, bytes<Kind::cut>},
    {{"resetAfter", "bytes", "resets the connection after so much of the body"}, bytes<Kind::reset>},
    {{"dripBytes", "1 and more", "sends the body in pieces of this size"}, bytes<Kind::drip>},
    {{"dripMs", "1 to 60000", "the time between two pieces; goes with dripBytes"}, interval},
}};

bool answersKey(const FaultRule& rule) {
    return std::ranges::any_of(endpoints(), [&](const Endpoint& candidate) {
        return (rule.endpoint == "*" || rule.endpoint == candidate.name) && candidate.answersKey(rule.text);
    });
}

/// What is wrong with a rule whose keys are good one by one, or "".
std::string contradiction(const FaultRule& rule, auto has) {
    if (rule.endpoint.empty()) return "missing key \"endpoint\"";
    const bool acts = rule.effect != Effect::none || rule.delivery.kind != Kind::whole;
    if (!acts && !has("delayMs")) return "the rule has no effect";
    const bool answers =
        rule.effect == Effect::status || rule.effect == Effect::result || rule.effect == Effect::body;
    if (has("status") && !answers) return "\"status\" goes with \"result\" or \"body\", or alone";
    const bool nothingSent = rule.delivery.kind == Kind::none || rule.delivery.kind == Kind::hang;
    if (nothingSent && rule.effect != Effect::none) return "\"reset\" and \"hang\" go with no answer";
    if (has("seed") && !has("percent")) return "\"seed\" goes with \"percent\"";
    if (has("dripBytes") != has("dripMs")) return "\"dripBytes\" and \"dripMs\" go together";
    if (rule.effect == Effect::without && !answersKey(rule)) {
        return "no answer of " + rule.endpoint + " has the key \"" + rule.text + "\"";
    }
    if (rule.endpoint != "*" && !rule.fits(*endpointNamed(rule.endpoint), rule.card)) {
        return "requests to " + rule.endpoint + " carry no such token";
    }
    return {};
}

Outcome<FaultRule> readFaultRule(const JsonObject& object) {
    FaultRule rule;
    rule.source = object;
    rule.dice.seed(std::random_device{}());
    for (const auto& [name, value] : object) {
        const auto key = std::ranges::find(keys, name, &Key::name);
        if (key == keys.end()) return Failure{"unexpected key \"" + name + "\""};
        if (std::string error = key->take(rule, value); !error.empty()) {
            return Failure{"\"" + name + "\" " + error};
        }
    }
    const auto has = [&object](std::string_view name) {
        return std::ranges::any_of(object, [name](const auto& entry) { return entry.first == name; });
    };
    if (std::string reason = contradiction(rule, has); !reason.empty()) return Failure{reason};
    return rule;
}

}  // namespace

bool FaultRule::fits(const Endpoint& candidate, std::string_view cardId) const {
    if (endpoint != "*" && endpoint != candidate.name) return false;
    if (!card.empty() && card != cardId) return false;
    if (effect == Effect::without) return candidate.answersKey(text);
    if (effect == Effect::expirePciToken) return candidate.carriesPciToken();
    if (effect == Effect::expireBearer) return candidate.needsBearerToken;
    return true;
}

std::vector<FaultKey> faultKeys() {
    return {keys.begin(), keys.end()};
}

Outcome<std::vector<FaultRule>> readFaultRules(std::string_view json) {
    const Outcome<std::vector<JsonObject>> objects = readJsonObjects(json);
    if (!objects) return Failure{objects.reason()};
    std::vector<FaultRule> rules;
    for (const JsonObject& object : *objects) {
        Outcome<FaultRule> rule = readFaultRule(object);
        if (!rule) return Failure{"rule " + std::to_string(rules.size() + 1) + ": " + rule.reason()};
        rules.push_back(std::move(*rule));
    }
    return rules;
}

}  // namespace korvane::sandbox
