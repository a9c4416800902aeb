// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ServiceFixture.h"

#include <rapidjson/document.h>

#include <deque>
#include <memory>

#include "base/Base64.h"
#include "transport/AesCbc.h"

namespace korvane {
namespace {

const std::vector<std::uint8_t> key(32, 7);

}  // namespace

ServiceFixture::ServiceFixture() {
    config.preSharedKeyByteArray = key;
    config.apiUrl = "https://cards.example";
    config.cardId = "card-1";
    config.brandId.clear();
    config.trackingUUID.clear();
    config.gotInitialIV = false;
    config.useBiometrics = false;
    config.decCardStatus.clear();
    config.currentCardType = eKorvaneCardType::none;
    config.currentPciToken = "pci-token";
    config.currentBearerToken = "bearer-0";
    config.ivIdStr = "iv-0";
    config.ivByteArray = iv;
    config.ivCallback = [this](const IvReply& reply) {
        reply("iv-" + std::to_string(++ivsSupplied), base64Encode(iv));
    };
}

ServiceFixture::~ServiceFixture() {
    config.ivCallback = nullptr;
}

std::string ServiceFixture::encipher(const std::string& text) const {
    return base64Encode(*aesCbcEncrypt(key, iv, std::vector<std::uint8_t>{text.begin(), text.end()}));
}

std::string ServiceFixture::decipher(const std::string& base64Text) const {
    const auto plain = aesCbcDecrypt(key, iv, base64Decode(base64Text).value_or(std::vector<std::uint8_t>{}));
    return plain ? std::string{plain->begin(), plain->end()} : "(not deciphered)";
}

std::string ServiceFixture::json(const Fields& fields) {
    std::string text = "{";
    for (const auto& [name, value] : fields) {
        text += (text.size() > 1 ? ",\"" : "\"") + name + "\":\"" + value + "\"";
    }
    return text + "}";
}

UrlReply ServiceFixture::answer(int status, const Fields& fields) const {
    Fields enciphered;
    for (const auto& [name, value] : fields) enciphered.emplace_back(name, encipher(value));
    return {status, json(enciphered), ""};
}

void ServiceFixture::willAnswer(std::vector<UrlReply> replies) {
    device.urlSession->answerWith([left = std::deque<UrlReply>{replies.begin(), replies.end()}](
                                      const UrlRequest&) mutable -> std::optional<UrlReply> {
        if (left.empty()) return std::nullopt;
        UrlReply reply = std::move(left.front());
        left.pop_front();
        return reply;
    });
}

std::map<std::string, std::string> ServiceFixture::sent(std::size_t index) const {
    rapidjson::Document body;
    body.Parse(device.urlSession->requests().at(index).body.c_str());
    std::map<std::string, std::string> texts;
    for (const auto& member : body.GetObject()) texts[member.name.GetString()] = member.value.GetString();
    return texts;
}

std::vector<std::string> ServiceFixture::called() const {
    std::vector<std::string> names;
    for (const UrlRequest& request : device.urlSession->requests()) {
        names.push_back(request.url.substr(request.url.rfind('/') + 1));
    }
    return names;
}

void ServiceFixture::dropIv() {
    config.ivIdStr.clear();
    config.ivByteArray.clear();
}

std::vector<std::string> ServiceFixture::lines() {
    auto all = device.console->lines();
    device.console->clear();
    return all;
}

}  // namespace korvane
