// SPDX-License-Identifier: Apache-2.0
#include <iomanip>
#include <sstream>

#include "tests/explorer/World.h"

namespace korvane::explorer {
namespace {

using Texts = std::map<std::string, std::string>;

// Every word that means something, each in letters of an odd case, and some that mean nothing; and the status
// with which each is basic.
constexpr std::pair<const char*, int> words[] = {{"fAILURE: iNVALID tOKEN", 200},
                                                 {"FAILURE: EXPIRED TOKEN", 500},
                                                 {"failure: iv IS EXPIRED", 200},
                                                 {"FAILURE: invalid OFFSETID", 400},
                                                 {"failure: INCORRECT sms verification code", 200},
                                                 {"READ PCI token or bio timeout from keychain failed.", 0},
                                                 {"Failure: Card is blocked", 200},
                                                 {"Success ", 0},
                                                 {"", 0}};
constexpr const char* oddBodies[] = {"{}", "", "<html>", R"({"encryptedResult":"AAAA"})",
                                     R"({"encryptedResult":17})"};

/// Values that are there, and wrong.
constexpr std::pair<const char*, const char*> oddValues[] = {
    {"encryptedAccessToken", ""},
    {"encryptedPciToken", ""},
    {"encryptedBiometricsAuthenticationTimer", "abc"},
    {"encryptedCardImage", "iVBOR?"},
    {"encryptedCardImage", "AAAA"},
    {"encryptedCardDisclosures", "{"}};

/// Types and statuses as the service names them, and as the sandbox names its cards by them.
constexpr const char* cardTypes[] = {"physical", "virtual", "wearable", "paywallet", "sticker"};
constexpr std::pair<const char*, const char*> cardStatuses[] = {
    {"A1", "active"}, {"P2", "new"}, {"BT", "frozen"}, {"X9", ""}};
constexpr const char* basicCards[] = {"physical A1", "physical P2", "virtual P2", "wearable BT"};

void addFailures(std::vector<Answer>& answers, const ScriptedService& service) {
    for (const int status : {200, 400, 403, 500, 503}) {
        const std::string code = std::to_string(status);
        for (const auto& [word, basicWith] : words)
            answers.push_back({code + " \"" + word + "\"", service.refusal(status, word), status == basicWith,
                               "\"status\":" + code + ",\"result\":\"" + word + "\""});
    }
    for (const int status : {204, 302, 400, 401, 403, 404, 418, 500, 503}) {
        const std::string code = std::to_string(status);
        answers.push_back(
            {code, UrlReply{status, "", ""}, status == 401 || status == 500, "\"status\":" + code});
    }
    for (const std::string body : oddBodies) {
        std::ostringstream rule;
        rule << "\"body\":" << std::quoted(body);
        answers.push_back({"200 raw " + body, UrlReply{200, body, ""}, body == "{}", rule.str()});
    }
    answers.push_back({"lost", UrlReply{0, "", "connection reset"}, true, "\"reset\":true"});
}

Texts fullReply(const std::string& method, const ScriptedService& service, const Person& person) {
    if (method == "getBearerToken") return {{"encryptedAccessToken", "bearer-token"}};
    if (method == "pciTokenRequest") return {{"encryptedPciSmsToken", std::string{person.smsToken}}};
    if (method == "pciTokenSubmission")
        return {{"encryptedPciToken", "pci-token"}, {"encryptedBiometricsAuthenticationTimer", "86400"}};
    if (method == "getCardStatus") return {{"encryptedCardStatus", "A1"}, {"encryptedCardType", "physical"}};
    if (method != "getCardImage") return {};
    Texts details = service.cardDetails;
    details["encryptedPan"] = person.pan;
    details["encryptedCvv"] = person.cardCvv;
    details["encryptedLastName"] = person.name;
    return details;
}

/// The full reply, of any card; then each that lacks something or has something wrong in it.
void addReplies(std::vector<Answer>& answers, const std::string& method, const ScriptedService& service,
                const Person& person) {
    const auto add = [&](const std::string& name, const Texts& texts, bool basic = false) {
        Fields fields{texts.begin(), texts.end()};
        fields.emplace_back("encryptedResult", "sUCCESS");
        answers.push_back({name, service.ok(fields), basic});
        return &answers.back();
    };
    const Texts full = fullReply(method, service, person);
    if (method != "getCardStatus") add("ok", full, true)->success = true;
    for (const std::string type : cardTypes) {
        for (const auto& [status, suffix] : cardStatuses) {
            if (method != "getCardStatus") continue;
            const std::string card = type + " " + status;
            Answer& told = *add("ok, " + card, {{"encryptedCardStatus", status}, {"encryptedCardType", type}},
                                std::ranges::find(basicCards, card) != std::end(basicCards));
            told.success = true;
            const bool isKnown = type != "sticker";
            told.card = "card-" + (!isKnown          ? "unknown-type"
                                   : *suffix == '\0' ? "unknown-status"
                                                     : type + "-" + suffix);
        }
    }
    for (const auto& [field, ignored] : full) {
        Texts fewer = full;
        fewer.erase(field);
        add("ok, without " + field, fewer, method != "getCardImage" || field == "encryptedCardImage")->fault =
            "\"without\":\"" + field + "\"";
    }
    for (const auto& [field, value] : oddValues) {
        Texts odd = full;
        if (odd.contains(field))
            odd[field] = value, add(std::string{"ok, but "} + value + " for " + field, odd);
    }
    answers.push_back({"ok, nothing in it", service.ok({})});
}

}  // namespace

const std::vector<Answer>& answersTo(const std::string& waiting, const ScriptedService& service,
                                     const Person& person) {
    static std::map<std::pair<const Person*, std::string>, std::vector<Answer>> made;
    auto& answers = made[{&person, waiting}];
    if (!answers.empty()) return answers;
    if (waiting == "finger") {
        return answers = {{"match", Finger{true}, true, "", true},
                          {"no match", Finger{false}, true},
                          {"match, token unreadable", Finger{true, {secureItemFailed}}, true},
                          {"match, time unreadable", Finger{true, {secureItemSuccess, secureItemFailed}}}};
    }
    const std::string& iv = service.ivText;
    if (waiting == "iv") {
        return answers = {{"supplies one", IvReplies{{"iv", iv}}, true, "", true},
                          {"replies twice", IvReplies{{"iv", iv}, {std::nullopt, std::nullopt}}},
                          {"replies nothing, then one", IvReplies{{std::nullopt, std::nullopt}, {"iv", iv}}},
                          {"replies nothing", IvReplies{{std::nullopt, std::nullopt}}, true},
                          {"replies an id alone", IvReplies{{"iv", std::nullopt}}, true},
                          {"replies an IV alone", IvReplies{{std::nullopt, iv}}},
                          {"replies an empty IV", IvReplies{{"iv", ""}}, true},
                          {"replies an empty id", IvReplies{{"", iv}}},
                          {"replies no base64", IvReplies{{"iv", "AAECAwQFBgcI\nCQoLDA0ODw=="}}, true},
                          {"replies 12 bytes", IvReplies{{"iv", "AAECAwQFBgcICQoL"}}},
                          {"lets go of the reply", IvReplies{}}};
    }
    addReplies(answers, waiting, service, person);
    addFailures(answers, service);
    return answers;
}

}  // namespace korvane::explorer
