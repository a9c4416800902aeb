// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <charconv>

#include "base/Base64.h"
#include "sandbox/CardSide.h"
#include "sandbox/InspectionPage.h"
#include "sandbox/Json.h"
#include "sandbox/MagicCards.h"

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

JsonObject summaryOf(const Card& card) {
    return {{"id", card.id},
            {"type", card.type},
            {"status", card.status},
            {"pin", card.pin},
            {"name", displayName(card)}};
}

LoggedAnswer listCards(State& state, const HttpRequest&) {
    std::vector<JsonObject> list;
    for (const Card& card : state.database.cards()) {
        if (!isMagic(card.id)) list.push_back(summaryOf(card));
    }
    return {{200, writeJson(list)}, {}};
}

LoggedAnswer listMagic(State& state, const HttpRequest&) {
    std::vector<JsonObject> list;
    for (const MagicCard& magic : magicCards()) {
        const std::optional<Card> card = state.database.card(magic.id);
        if (!card) continue;
        JsonObject entry = summaryOf(*card);
        entry.emplace_back("does", std::string(magic.does));
        entry.emplace_back("fault", RawJson{magicRule(magic)});
        list.push_back(std::move(entry));
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
    Outcome<std::vector<FaultRule>> rules = readFaultRules(request.body);
    if (!rules) return problem(400, rules.reason());
    state.faults.add(std::move(*rules));  // all of a list or none
    return json({});
}

LoggedAnswer listFaults(State& state, const HttpRequest&) {
    std::vector<JsonObject> list;
    for (const FaultRule& rule : state.faults.rules()) {
        JsonObject entry = rule.source;
        const bool ends = rule.count != FaultRule::forever;
        entry.emplace_back("left", ends ? JsonValue{rule.count} : JsonValue{std::string("forever")});
        list.push_back(std::move(entry));
    }
    return {{200, writeJson(list)}, {}};
}

LoggedAnswer listFaultKeys(State&, const HttpRequest&) {
    std::vector<JsonObject> list;
    for (const FaultKey& key : faultKeys()) {
        list.push_back({{"key", std::string(key.name)},
                        {"takes", std::string(key.takes)},
                        {"meaning", std::string(key.meaning)}});
    }
    return {{200, writeJson(list)}, {}};
}

LoggedAnswer clearFaults(State& state, const HttpRequest&) {
    state.faults.clear();
    return json({});
}

LoggedAnswer showJournal(State& state, const HttpRequest& request) {
    JournalQuery query;
    for (const auto& [name, value] : request.query) {
        std::int64_t* const number = name == "since" ? &query.since : name == "last" ? &query.last : nullptr;
        if (number) {
            const char* const end = value.data() + value.size();
            const auto [rest, failure] = std::from_chars(value.data(), end, *number);
            if (failure != std::errc{} || rest != end || *number < 0) {
                return problem(400, "\"" + name + "\" is no whole number from 0 on");
            }
        } else if (name == "card") {
            query.card = value;
        } else if (name == "endpoint" && endpointNamed(value)) {
            query.endpoint = value;
        } else if (name == "endpoint") {
            return problem(400, "\"endpoint\" is not the name of an endpoint");
        } else {
            return problem(400, "the query takes endpoint, card, since and last, not \"" + name + "\"");
        }
    }
    return {{200, state.journal.toJson(query)}, {}};
}

LoggedAnswer resetAll(State& state, const HttpRequest&) {
    state.database.reset(now());
    state.faults.reset();
    state.journal.clear();
    return json({});
}

LoggedAnswer showPage(State& state, const HttpRequest&) {
    return {inspectionPage(state.pageToken), {}};
}

struct Route {
    std::string_view method;
    std::string_view path;
    LoggedAnswer (*run)(State&, const HttpRequest&);
};

constexpr std::array<Route, 11> routes{{
    {"GET", "/", showPage},
    {"POST", "/host/iv", giveIv},
    {"POST", "/host/sms", lastCode},
    {"GET", "/host/cards", listCards},
    {"GET", "/host/magic", listMagic},
    {"GET", "/host/faults", listFaults},
    {"GET", "/host/faults/keys", listFaultKeys},
    {"POST", "/host/faults", addFaults},
    {"DELETE", "/host/faults", clearFaults},
    {"GET", "/host/journal", showJournal},
    {"POST", "/host/reset", resetAll},
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
