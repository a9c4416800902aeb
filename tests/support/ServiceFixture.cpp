// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ServiceFixture.h"

#include <rapidjson/document.h>

#include "base/Base64.h"
#include "transport/AesCbc.h"

namespace korvane {

static const std::vector<std::uint8_t> key(32, 7);

ServiceFixture::ServiceFixture() {
    config.preSharedKeyByteArray = key;
    config.apiUrl = "https://cards.example";
    config.cardId = "card-1";
    config.currentPciToken = "pci-token";
    config.currentBearerToken = "bearer-0";
    config.ivIdStr = "iv-0";
    config.ivByteArray = iv;
    config.ivCallback = [this](const IvReply& reply) {
        reply("iv-" + std::to_string(++ivsSupplied), ivText);
    };
}

std::string ServiceFixture::encipher(const std::string& text) const {
    return base64Encode(*aesCbcEncrypt(key, iv, std::vector<std::uint8_t>{text.begin(), text.end()}));
}

UrlReply ServiceFixture::answer(int status, const Fields& fields) const {
    std::string body = "{";
    for (const auto& [name, value] : fields) {
        body += (body.size() > 1 ? ",\"" : "\"") + name + "\":\"" + encipher(value) + "\"";
    }
    return {status, body + "}", ""};
}

void ServiceFixture::willAnswer(std::vector<UrlReply> replies) {
    device.urlSession->answerWith([left = std::move(replies), next = std::size_t{0}](
                                      const UrlRequest&) mutable -> std::optional<UrlReply> {
        return next < left.size() ? std::optional{left[next++]} : std::nullopt;
    });
}

std::string ServiceFixture::sent(std::size_t index) const {
    const UrlRequest& request = device.urlSession->requests().at(index);
    std::string text = request.url.substr(request.url.rfind('/') + 1);
    rapidjson::Document body;
    body.Parse(request.body.c_str());
    for (const auto& member : body.GetObject()) {
        std::string name = member.name.GetString();
        std::string value = member.value.GetString();
        if (name.starts_with("encrypted")) {
            const auto plain = aesCbcDecrypt(key, iv, base64Decode(value).value());
            name.erase(0, 9);
            value = plain ? std::string{plain->begin(), plain->end()} : "(not deciphered)";
        }
        text += " " + name + "=" + value;
    }
    return text;
}

std::string ServiceFixture::printed() {
    std::string text;
    for (const std::string& line : device.console->lines()) text += (text.empty() ? "" : "|") + line;
    device.console->clear();
    return text;
}

}  // namespace korvane
