// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>

#include "base/Base64.h"
#include "sandbox/CardSide.h"
#include "sandbox/Json.h"

namespace korvane::sandbox {
namespace {

LoggedAnswer json(const JsonObject& object) {
    return {{200, writeJson(object)}, {}};
}

LoggedAnswer problem(int status, const std::string& reason) {
    return {{status, writeJson(JsonObject{{"error", reason}})}, reason};
}

LoggedAnswer giveIv(State& state, const HttpRequest&) {
    const Iv iv = newIv(state);
    return json({{"ivId", iv.id}, {"iv", base64Encode(iv.bytes)}});
}

LoggedAnswer lastCode(State& state, const HttpRequest& request) {
    std::string cardId;
    if (!request.body.empty()) {
        const Outcome<JsonObject> body = readJsonObject(request.body);
        if (!body) return problem(400, body.reason());
        for (const auto& [key, value] : *body) {
            const auto* text = std::get_if<std::string>(&value);
            if (key != "cardId" || !text) return problem(400, "the one key is \"cardId\", a text");
            cardId = *text;
        }
    }
    const std::optional<Sms> sms = state.database.lastSms(cardId);
    if (!sms) return problem(404, "no code was sent yet");
    return json({{"code", sms->code}, {"cardId", sms->cardId}});
}

LoggedAnswer listCards(State& state, const HttpRequest&) {
    std::vector<JsonObject> list;
    for (const Card& card : state.database.cards()) {
        list.push_back(
            {{"id", card.id}, {"type", card.type}, {"status", card.status}, {"name", displayName(card)}});
    }
    return {{200, writeJson(list)}, {}};
}

LoggedAnswer showCard(State& state, const std::string& id) {
    const std::optional<Card> card = state.database.card(id);
    if (!card) return problem(404, "no such card");
    return json({{"id", card->id},
                 {"type", card->type},
                 {"status", card->status},
                 {"name", displayName(*card)},
                 {"pin", card->pin},
                 {"pan", card->pan},
                 {"cvv", card->cvv},
                 {"expiry", card->expiry},
                 {"firstName", card->firstName},
                 {"middleName", card->middleName},
                 {"lastName", card->lastName},
                 {"network", card->network}});
}

LoggedAnswer addFaults(State& state, const HttpRequest& request) {
    const Outcome<std::vector<JsonObject>> objects = readJsonObjects(request.body);
    if (!objects) return problem(400, objects.reason());
    std::vector<FaultRule> rules;
    for (const JsonObject& object : *objects) {
        Outcome<FaultRule> rule = readFaultRule(object);
        if (!rule) return problem(400, rule.reason());
        rules.push_back(std::move(*rule));
    }
    for (FaultRule& rule : rules) state.faults.add(std::move(rule));  // all of a list or none
    return json({});
}

LoggedAnswer clearFaults(State& state, const HttpRequest&) {
    state.faults.clear();
    return json({});
}

LoggedAnswer countRequests(State& state, const HttpRequest&) {
    JsonObject counts;
    for (const Endpoint& endpoint : endpoints()) {
        const auto found = state.requests.find(endpoint.name);
        counts.emplace_back(endpoint.name, found == state.requests.end() ? std::int64_t{0} : found->second);
    }
    return json(counts);
}

struct Route {
    std::string_view method;
    std::string_view path;
    LoggedAnswer (*run)(State&, const HttpRequest&);
};

constexpr std::array<Route, 6> routes{{
    {"POST", "/host/iv", giveIv},
    {"POST", "/host/sms", lastCode},
    {"GET", "/host/cards", listCards},
    {"POST", "/host/faults", addFaults},
    {"DELETE", "/host/faults", clearFaults},
    {"GET", "/host/requests", countRequests},
}};

}  // namespace

LoggedAnswer answerHostSide(State& state, const HttpRequest& request) {
    const std::lock_guard lock(state.mutex);
    constexpr std::string_view card = "/host/cards/";
    if (request.path.starts_with(card) && request.method == "GET") {
        return showCard(state, request.path.substr(card.size()));
    }
    bool known = request.path.starts_with(card);
    for (const Route& route : routes) {
        if (route.path != request.path) continue;
        if (route.method == request.method) return route.run(state, request);
        known = true;
    }
    return known ? problem(405, "the path does not take " + request.method) : problem(404, "no such path");
}

}  // namespace korvane::sandbox
