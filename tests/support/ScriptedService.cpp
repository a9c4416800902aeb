// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ScriptedService.h"

#include <korvane/Initialize.h>

#include <rapidjson/document.h>

#include <algorithm>

#include "base/Base64.h"
#include "transport/AesCbc.h"

namespace korvane {
namespace {

const std::vector<std::uint8_t> key(32, 7);

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
    device.urlSession->answerWith([this](const UrlRequest& request) -> std::optional<UrlReply> {
        const std::string endpoint = endpointOf(request);
        auto& waiting = scripted_[endpoint];
        if (waiting.empty()) return success(endpoint);
        const auto reply = waiting.front();
        waiting.pop_front();
        return reply;
    });
    const IvCallback ivCallback = [this](const IvReply& reply) {
        if (!hostSuppliesIvs) return reply(std::nullopt, std::nullopt);
        reply("iv-" + std::to_string(++ivsSupplied), ivText);
    };
    initialize(base64Encode(key), "https://cards.example", ivCallback, false, {}, {});
}

std::string ScriptedService::encipher(const std::string& text) const {
    return base64Encode(*aesCbcEncrypt(key, iv, std::vector<std::uint8_t>{text.begin(), text.end()}));
}

UrlReply ScriptedService::answer(int status, const Fields& fields) const {
    std::string body = "{";
    for (const auto& [name, value] : fields) {
        body += (body.size() > 1 ? ",\"" : "\"") + name + "\":\"" + encipher(value) + "\"";
    }
    return {status, body + "}", ""};
}

UrlReply ScriptedService::success(const std::string& endpoint) const {
    Fields fields{{"encryptedResult", "Success"}};
    if (endpoint == "token") fields.emplace_back("encryptedAccessToken", "bearer");
    if (endpoint == "pciTokenRequest") fields.emplace_back("encryptedPciSmsToken", "sms-token");
    if (endpoint == "pciTokenSubmission") fields.emplace_back("encryptedPciToken", "pci-token");
    if (endpoint == "getCardStatus") {
        fields.emplace_back("encryptedCardStatus", cardStatus);
        fields.emplace_back("encryptedCardType", cardType);
    }
    if (endpoint == "cardImage") fields.insert(fields.end(), cardDetails.begin(), cardDetails.end());
    return ok(fields);
}

void ScriptedService::willAnswer(std::vector<UrlReply> replies) {
    device.urlSession->answerWith([left = std::move(replies), next = std::size_t{0}](
                                      const UrlRequest&) mutable -> std::optional<UrlReply> {
        return next < left.size() ? std::optional{left[next++]} : std::nullopt;
    });
}

int ScriptedService::calls(const std::string& endpoint) const {
    const auto& requests = device.urlSession->requests();
    return static_cast<int>(std::count_if(requests.begin(), requests.end(), [&](const UrlRequest& each) {
        return endpointOf(each) == endpoint;
    }));
}

Fields ScriptedService::plainFields(const UrlRequest& request) const {
    rapidjson::Document body;
    body.Parse(request.body.c_str());
    Fields fields;
    for (const auto& member : body.GetObject()) {
        auto& [name, value] = fields.emplace_back(member.name.GetString(), member.value.GetString());
        if (!name.starts_with("encrypted")) continue;
        const auto plain = aesCbcDecrypt(key, iv, base64Decode(value).value());
        value = plain ? std::string{plain->begin(), plain->end()} : "(not deciphered)";
    }
    return fields;
}

std::string ScriptedService::sent(const std::string& endpoint, const std::string& name) const {
    const auto& requests = device.urlSession->requests();
    for (auto request = requests.rbegin(); request != requests.rend(); ++request) {
        if (endpointOf(*request) != endpoint) continue;
        for (const auto& [key, value] : plainFields(*request)) {
            if (key == name) return value;
        }
        return "absent";
    }
    return "not sent";
}

std::string ScriptedService::sent(std::size_t index) const {
    const UrlRequest& request = device.urlSession->requests().at(index);
    std::string text = endpointOf(request);
    for (const auto& [name, value] : plainFields(request)) {
        text += " " + name.substr(name.starts_with("encrypted") ? 9 : 0) + "=" + value;
    }
    return text;
}

std::string ScriptedService::printed() {
    std::string text;
    for (const std::string& line : device.console->lines()) text += (text.empty() ? "" : "|") + line;
    device.console->clear();
    return text;
}

}  // namespace korvane
