// SPDX-License-Identifier: Apache-2.0
#include "tests/explorer/Answers.h"

#include <array>
#include <map>

namespace korvane::explorer {
namespace {

struct Word {
    const char* text;
    int basicWith;  ///< the status with which it is also given in the short form
};

// Every word that means something, each in letters of an odd case, and some that mean nothing.
constexpr std::array<Word, 9> words{{{"fAILURE: iNVALID tOKEN", 200},
                                     {"FAILURE: EXPIRED TOKEN", 500},
                                     {"failure: iv IS EXPIRED", 200},
                                     {"FAILURE: invalid OFFSETID", 400},
                                     {"failure: INCORRECT sms verification code", 200},
                                     {"READ PCI token or bio timeout from keychain failed.", 0},
                                     {"Failure: Card is blocked", 200},
                                     {"Success ", 0},
                                     {"", 0}}};

void addFailures(std::vector<Answer>& answers, const ScriptedService& service) {
    for (const int status : {200, 400, 403, 500, 503}) {
        const std::string code = std::to_string(status);
        for (const Word& word : words) {
            answers.push_back({code + " \"" + word.text + "\"", service.refusal(status, word.text),
                               "\"status\":" + code + ",\"result\":\"" + word.text + "\"",
                               word.basicWith == status});
        }
    }
    for (const int status : {204, 302, 400, 401, 403, 404, 418, 500, 503}) {
        const std::string code = std::to_string(status);
        answers.push_back(
            {code, UrlReply{status, "", ""}, "\"status\":" + code, status == 401 || status == 500});
    }
    for (const char* const body :
         {"{}", "", "<html>", R"({"encryptedResult":"AAAA"})", R"({"encryptedResult":17})"}) {
        std::string escaped;
        for (const char c : std::string{body}) escaped += c == '"' ? "\\\"" : std::string{c};
        answers.push_back({std::string{"200 raw "} + body, UrlReply{200, body, ""},
                           "\"body\":\"" + escaped + "\"", escaped == "{}"});
    }
    answers.push_back({"lost", UrlReply{0, "", "connection reset"}, "\"reset\":true", true});
}

/// The full answer of a success, then those that lack something or have something wrong in it.
void addSuccesses(std::vector<Answer>& answers, const std::string& method, const ScriptedService& service) {
    const auto add = [&](const char* name, Fields fields, bool basic = true) {
        fields.emplace_back("encryptedResult", "sUCCESS");
        answers.push_back({name, service.ok(fields), "", basic});
    };
    if (method == "getBearerToken") {
        add("ok", {{"encryptedAccessToken", "bearer-token"}});
        add("ok, empty token", {{"encryptedAccessToken", ""}}, false);
    } else if (method == "pciTokenRequest") {
        add("ok", {{"encryptedPciSmsToken", "sms-token"}});
    } else if (method == "pciTokenSubmission") {
        const std::string timer = "encryptedBiometricsAuthenticationTimer";
        add("ok", {{"encryptedPciToken", "pci-token"}, {timer, "300"}});
        add("ok, no timer", {{"encryptedPciToken", "pci-token"}}, false);
        add("ok, odd timer", {{"encryptedPciToken", "pci-token"}, {timer, "abc"}}, false);
        add("ok, empty token", {{"encryptedPciToken", ""}}, false);
    } else if (method == "getCardStatus") {
        const std::string status = "encryptedCardStatus", type = "encryptedCardType";
        add("ok", {{status, service.cardStatus}, {type, service.cardType}});
        add("ok, other status",
            {{status, service.cardStatus == "P2" ? "A1" : "P2"}, {type, service.cardType}});
        add("ok, no status", {{type, service.cardType}});
        add("ok, no type", {{status, service.cardStatus}});
    } else if (method == "getCardImage") {
        const auto but = [&](const std::string& name, std::optional<std::string> value) {
            auto details = service.cardDetails;
            details.erase(name);
            if (value) details[name] = *value;
            return Fields{details.begin(), details.end()};
        };
        add("ok", but("", std::nullopt));
        add("ok, no image", but("encryptedCardImage", std::nullopt));
        add("ok, image not base64", but("encryptedCardImage", "iVBOR?"));
        add("ok, image no picture", but("encryptedCardImage", "AAAA"));
        add("ok, no disclosures", but("encryptedCardDisclosures", std::nullopt));
        add("ok, odd disclosures", but("encryptedCardDisclosures", "{"), false);
        add("ok, no number", but("encryptedPan", std::nullopt), false);
    } else {
        return add("ok", {});
    }
    add("ok, nothing in it", {}, false);
}

std::vector<Answer> make(const std::string& waiting, const ScriptedService& service) {
    if (waiting == "finger") return {{"match", true, "", true}, {"no match", false, "", true}};
    const auto& iv = service.ivText;
    if (waiting == "iv") {
        return {{"supplies one", std::vector<IvTexts>{{"iv", iv}}, "", true},
                {"replies twice", std::vector<IvTexts>{{"iv", iv}, {std::nullopt, std::nullopt}}},
                {"replies nothing, then one", std::vector<IvTexts>{{std::nullopt, std::nullopt}, {"iv", iv}}},
                {"replies nothing", std::vector<IvTexts>{{std::nullopt, std::nullopt}}, "", true},
                {"replies an id alone", std::vector<IvTexts>{{"iv", std::nullopt}}, "", true},
                {"replies an IV alone", std::vector<IvTexts>{{std::nullopt, iv}}},
                {"replies an empty IV", std::vector<IvTexts>{{"iv", ""}}, "", true},
                {"replies an empty id", std::vector<IvTexts>{{"", iv}}},
                {"replies no base64", std::vector<IvTexts>{{"iv", "AAECAwQFBgcI\nCQoLDA0ODw=="}}, "", true},
                {"replies 12 bytes", std::vector<IvTexts>{{"iv", "AAECAwQFBgcICQoL"}}},
                {"lets go of the reply", std::vector<IvTexts>{}}};
    }
    std::vector<Answer> answers;
    addSuccesses(answers, waiting, service);
    addFailures(answers, service);
    return answers;
}

}  // namespace

const std::vector<Answer>& answersTo(const std::string& waiting, const ScriptedService& service) {
    static std::map<std::array<std::string, 3>, std::vector<Answer>> made;
    auto& answers = made[{waiting, service.cardType, service.cardStatus}];
    if (answers.empty()) {
        answers = make(waiting, service);
        answers.front().success = true;
    }
    return answers;
}

}  // namespace korvane::explorer
