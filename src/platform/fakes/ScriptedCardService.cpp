// SPDX-License-Identifier: Apache-2.0
#include "platform/fakes/ScriptedCardService.h"

#include <korvane/Initialize.h>
#include <openssl/evp.h>

#include <algorithm>
#include <memory>

#include <rapidjson/document.h>

#include "platform/Background.h"

namespace korvane {
namespace {

using Bytes = std::vector<std::uint8_t>;

// The service goes by the crypto library alone: what the component enciphers is read by something else than
// the component.

std::string base64(const Bytes& bytes) {
    std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');
    text.resize(static_cast<std::size_t>(EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                                                         bytes.data(), static_cast<int>(bytes.size()))));
    return text;
}

std::optional<Bytes> fromBase64(const std::string& text) {
    Bytes bytes(text.size() / 4 * 3 + 1);
    const int size = EVP_DecodeBlock(bytes.data(), reinterpret_cast<const unsigned char*>(text.data()),
                                     static_cast<int>(text.size()));
    const auto padding =
        std::count(text.end() - std::min<std::ptrdiff_t>(2, std::ssize(text)), text.end(), '=');
    if (size < padding) return std::nullopt;
    bytes.resize(static_cast<std::size_t>(size - padding));
    return bytes;
}

enum class Direction { decrypt, encrypt };

std::optional<Bytes> aesCbc(Direction direction, const Bytes& key, const Bytes& iv, const Bytes& input) {
    const std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> context(EVP_CIPHER_CTX_new(),
                                                                                  EVP_CIPHER_CTX_free);
    Bytes output(input.size() + 16);
    int size = 0, last = 0;
    if (EVP_CipherInit_ex2(context.get(), EVP_aes_256_cbc(), key.data(), iv.data(),
                           static_cast<int>(direction), nullptr) != 1 ||
        EVP_CipherUpdate(context.get(), output.data(), &size, input.data(), static_cast<int>(input.size())) !=
            1 ||
        EVP_CipherFinal_ex(context.get(), output.data() + size, &last) != 1)
        return std::nullopt;
    output.resize(static_cast<std::size_t>(size) + static_cast<std::size_t>(last));
    return output;
}

std::string endpointOf(const UrlRequest& request) {
    return request.url.substr(request.url.rfind('/') + 1);
}

}  // namespace

ScriptedCardService::ScriptedCardService()
    : key(32, 7),
      keyText(base64(key)),
      iv{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15},
      ivText(base64(iv)),
      cardDetails{
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
        auto reply = std::move(waiting.front());
        waiting.pop_front();
        return reply;
    });
    const IvCallback ivCallback = [this](const IvReply& reply) {
        if (!hostSuppliesIvs) return reply(std::nullopt, std::nullopt);
        reply("iv-" + std::to_string(++ivsSupplied), ivText);
    };
    initialize(keyText, "https://cards.example", ivCallback, false, {}, {});
    device.mainQueue->runAll();
}

std::string ScriptedCardService::encipher(const std::string& text) const {
    return base64(aesCbc(Direction::encrypt, key, iv, {text.begin(), text.end()}).value());
}

UrlReply ScriptedCardService::answer(int status, const Fields& fields) const {
    std::string body = "{";
    for (const auto& [name, value] : fields) {
        body += (body.size() > 1 ? ",\"" : "\"") + name + "\":\"" + encipher(value) + "\"";
    }
    return {status, body + "}", ""};
}

UrlReply ScriptedCardService::success(const std::string& endpoint) const {
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

void ScriptedCardService::willAnswer(std::vector<UrlReply> replies) {
    device.urlSession->answerWith([left = std::move(replies), next = std::size_t{0}](
                                      const UrlRequest&) mutable -> std::optional<UrlReply> {
        return next < left.size() ? std::optional{left[next++]} : std::nullopt;
    });
}

void ScriptedCardService::settle() {
    do {
        device.mainQueue->runAll();
        finishBackgroundWork();
    } while (device.mainQueue->pending() > 0);
}

int ScriptedCardService::calls(const std::string& endpoint) const {
    const auto& requests = device.urlSession->requests();
    return static_cast<int>(std::count_if(requests.begin(), requests.end(), [&](const UrlRequest& each) {
        return endpointOf(each) == endpoint;
    }));
}

ScriptedCardService::Fields ScriptedCardService::plainFields(const UrlRequest& request) const {
    rapidjson::Document body;
    body.Parse(request.body.c_str());
    Fields fields;
    if (!body.IsObject()) return fields;
    for (const auto& member : std::as_const(body).GetObject()) {
        if (!member.value.IsString()) continue;
        auto& [name, value] = fields.emplace_back(member.name.GetString(), member.value.GetString());
        if (!name.starts_with("encrypted")) continue;
        const auto cipher = fromBase64(value);
        const auto plain = cipher ? aesCbc(Direction::decrypt, key, iv, *cipher) : std::nullopt;
        value = plain ? std::string{plain->begin(), plain->end()} : "(not deciphered)";
    }
    return fields;
}

std::string ScriptedCardService::sent(const std::string& endpoint, const std::string& name) const {
    const auto& requests = device.urlSession->requests();
    for (auto request = requests.rbegin(); request != requests.rend(); ++request) {
        if (endpointOf(*request) != endpoint) continue;
        for (const auto& [each, value] : plainFields(*request)) {
            if (each == name) return value;
        }
        return "absent";
    }
    return "not sent";
}

std::string ScriptedCardService::sent(std::size_t index) const {
    const UrlRequest& request = device.urlSession->requests().at(index);
    std::string text = endpointOf(request);
    for (const auto& [name, value] : plainFields(request)) {
        text += " " + name.substr(name.starts_with("encrypted") ? 9 : 0) + "=" + value;
    }
    return text;
}

}  // namespace korvane
