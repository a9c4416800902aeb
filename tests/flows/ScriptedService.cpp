// SPDX-License-Identifier: Apache-2.0
#include "tests/flows/ScriptedService.h"

#include <rapidjson/document.h>

#include <algorithm>

#include "base/Base64.h"
#include "transport/AesCbc.h"

namespace korvane {
namespace {

const std::vector<std::uint8_t> key(32, 7);
const std::vector<std::uint8_t> iv(16, 9);

std::vector<std::uint8_t> bytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

std::string encipher(const std::string& text) {
    return base64Encode(*aesCbcEncrypt(key, iv, bytesOf(text)));
}

std::string decipher(const std::string& text) {
    const auto plain = aesCbcDecrypt(key, iv, base64Decode(text).value_or(std::vector<std::uint8_t>{}));
    return plain ? std::string{plain->begin(), plain->end()} : "not deciphered";
}

std::string endpointOf(const UrlRequest& request) {
    return request.url.substr(request.url.rfind('/') + 1);
}

}  // namespace

ScriptedService::ScriptedService()
    : cardDetails{
          {"encryptedCardImage", "iVBORw0KGgoAAAAA"},  // a PNG's signature and a little more
          {"encryptedCardDisclosures",
           R"({"CardDisclosures":[{"Language":"Spanish","CardDisclosure":"hola"},)"
           R"({"Language":"English","CardDisclosure":"hello"}]})"},
          {"encryptedPan", "5555550000079197"},
          {"encryptedCvv", "8642"},
          {"encryptedExpiryDate", "12/31"},
          {"encryptedFirstName", "Sam"},
          {"encryptedMiddleName", ""},
          {"encryptedLastName", "Okafor"},
          {"encryptedCardNetwork", "MasterCard"},
      } {
    device.urlSession->answerWith([this](const UrlRequest& request) { return answer(request); });
    const IvCallback ivCallback = [this](const IvReply& reply) {
        if (hostSuppliesIvs) {
            reply("iv-" + std::to_string(++ivsSupplied), base64Encode(iv));
        } else {
            reply(std::nullopt, std::nullopt);
        }
    };
    initialize(base64Encode(key), "https://cards.example", ivCallback, false, {}, {});
}

void ScriptedService::next(const std::string& endpoint, UrlReply reply) {
    scripted_[endpoint].push_back(std::move(reply));
}

std::string ScriptedService::body(const std::map<std::string, std::string>& fields) const {
    std::string text = "{";
    for (const auto& [name, value] : fields) {
        text += (text.size() > 1 ? ",\"" : "\"") + name + "\":\"" + encipher(value) + "\"";
    }
    return text + "}";
}

UrlReply ScriptedService::result(const std::string& word) const {
    return {200, body({{"encryptedResult", word}}), ""};
}

UrlReply ScriptedService::refusal(int status, const std::string& word) const {
    return {status, body({{"encryptedResult", word}}), ""};
}

UrlReply ScriptedService::success(const std::string& endpoint) const {
    if (endpoint == "token")
        return {200, body({{"encryptedResult", "Success"}, {"encryptedAccessToken", "bearer"}}), ""};
    if (endpoint == "pciTokenRequest") {
        return {200, body({{"encryptedPciSmsToken", "sms-token"}, {"encryptedResult", "Success"}}), ""};
    }
    if (endpoint == "pciTokenSubmission") {
        return {200, body({{"encryptedResult", "Success"}, {"encryptedPciToken", "pci-token"}}), ""};
    }
    if (endpoint == "getCardStatus") {
        return {200,
                body({{"encryptedResult", "Success"},
                      {"encryptedCardStatus", cardStatus},
                      {"encryptedCardType", cardType}}),
                ""};
    }
    if (endpoint == "cardImage") {
        auto fields = cardDetails;
        fields["encryptedResult"] = "success";
        return {200, body(fields), ""};
    }
    return result("Success");
}

std::optional<UrlReply> ScriptedService::answer(const UrlRequest& request) {
    const std::string endpoint = endpointOf(request);
    if (const auto hung = std::find(hanging_.begin(), hanging_.end(), endpoint); hung != hanging_.end()) {
        hanging_.erase(hung);
        return std::nullopt;
    }
    std::deque<UrlReply>& waiting = scripted_[endpoint];
    if (waiting.empty()) return success(endpoint);
    UrlReply reply = std::move(waiting.front());
    waiting.pop_front();
    return reply;
}

int ScriptedService::calls(const std::string& endpoint) const {
    const auto& requests = device.urlSession->requests();
    return static_cast<int>(std::count_if(requests.begin(), requests.end(), [&](const UrlRequest& each) {
        return endpointOf(each) == endpoint;
    }));
}

std::string ScriptedService::sent(const std::string& endpoint, const std::string& name) const {
    const auto& requests = device.urlSession->requests();
    const auto last = std::find_if(requests.rbegin(), requests.rend(),
                                   [&](const UrlRequest& each) { return endpointOf(each) == endpoint; });
    if (last == requests.rend()) return "not sent";
    rapidjson::Document sentBody;
    sentBody.Parse(last->body.c_str());
    return sentBody.IsObject() && sentBody.HasMember(name.c_str())
               ? decipher(sentBody[name.c_str()].GetString())
               : "absent";
}

DrivenJourney::DrivenJourney(ScriptedService& service, JourneyKind kind)
    : journey(std::make_unique<Journey>(kind, "card-1")), service_(service) {
    observation_ = NotificationCenter::defaultCenter().observe(
        NotificationCloseUI,
        [this](const NotificationUserInfo& info) { closed.push_back(info.at("result")); });
    journey->appear();
    service_.settle();
}

Journey::Outcome DrivenJourney::tap(const std::string& controlId) {
    const Journey::Outcome outcome = journey->perform(controlId);
    service_.settle();
    return outcome;
}

Journey::Outcome DrivenJourney::type(const std::string& digits) {
    const Journey::Outcome outcome = journey->replaceText(digits);
    service_.settle();
    return outcome;
}

bool DrivenJourney::enabled(const std::string& controlId) const {
    const ScreenSnapshot screen = journey->screen();
    return std::any_of(screen.controls.begin(), screen.controls.end(),
                       [&](const Control& each) { return each.id == controlId && each.enabled; });
}

std::string DrivenJourney::state(const std::string& name) const {
    for (const StateField& field : journey->screen().state) {
        if (field.name != name) continue;
        if (const auto* const flag = std::get_if<bool>(&field.value)) return *flag ? "true" : "false";
        if (const auto* const number = std::get_if<int>(&field.value)) return std::to_string(*number);
        return std::get<std::string>(field.value);
    }
    return "none";
}

std::string DrivenJourney::row(const std::string& id) const {
    for (const DetailRow& each : journey->screen().rows) {
        if (each.id == id) return each.value;
    }
    return "none";
}

void DrivenJourney::verifyBySMS() {
    tap("sdk.sms.explain.button");
    type("123456");
}

void DrivenJourney::enterAndConfirm(const std::string& pin) {
    type(pin);
    tap("sdk.setpin.button");
    type(pin);
    tap("sdk.confirmpin.button");
}

}  // namespace korvane
