// SPDX-License-Identifier: Apache-2.0
#include "sandbox/WireRequest.h"

#include <algorithm>

#include "base/Base64.h"
#include "base/Text.h"
#include "sandbox/Json.h"
#include "transport/AesCbc.h"

namespace korvane::sandbox {
namespace {

constexpr std::string_view pciToken = "encryptedPciToken";

const std::vector<Endpoint>& table() {
    static const std::vector<Endpoint> rows{
        {"getBearerToken",
         "/api/sdk/token",
         false,
         {"encryptedUsername", "encryptedPassword"},
         {"encryptedAccessToken", "encryptedExpiration"}},
        {"pciTokenRequest", "/api/sdk/pciTokenRequest", true, {}, {"encryptedPciSmsToken"}},
        {"pciTokenSubmission",
         "/api/sdk/pciTokenSubmission",
         true,
         {"encryptedPciSmsToken", "encryptedTwoFactorCode", "encryptedUseBiometrics"},
         {pciToken, "encryptedPciTokenExpiration", "encryptedBiometricsAuthenticationTimer"}},
        {"pinSet", "/api/sdk/pinSet", true, {"encryptedPIN", pciToken}, {}},
        {"getCardStatus",
         "/api/sdk/getCardStatus",
         true,
         {pciToken},
         {"encryptedCardStatus", "encryptedCardType"}},
        {"setCardStatus", "/api/sdk/cardStatus", true, {"encryptedStatus", pciToken}, {}},
        {"getCardImage",
         "/api/sdk/cardImage",
         true,
         {pciToken},
         {"encryptedCardImage", "encryptedCardDisclosures", "encryptedPan", "encryptedCvv",
          "encryptedExpiryDate", "encryptedFirstName", "encryptedMiddleName", "encryptedLastName",
          "encryptedCardNetwork"}},
        {"physicalCardActivationAndPinSet",
         "/api/sdk/physicalCardActivationAndPinSet",
         true,
         {"encryptedCVV", "encryptedPIN", "encryptedLastFourOfPan", pciToken},
         {}},
        {"virtualCardActivationAndPinSet",
         "/api/sdk/virtualCardActivationAndPinSet",
         true,
         {"encryptedPIN", pciToken},
         {}},
        {"wearableCardActivationAndPinSet",
         "/api/sdk/wearableCardActivationAndPinSet",
         true,
         {"encryptedPIN", pciToken},
         {}},
    };
    return rows;
}

template <class Member>
const Endpoint* find(Member member, std::string_view value) {
    const auto found = std::ranges::find(table(), value, member);
    return found == table().end() ? nullptr : &*found;
}

bool isEnciphered(std::string_view key) {
    return key.starts_with("encrypted");
}

std::span<const std::uint8_t> bytesOf(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

}  // namespace

bool Endpoint::carriesPciToken() const {
    return std::ranges::find(keys, pciToken) != keys.end();
}

bool Endpoint::answersKey(std::string_view key) const {
    return key == "encryptedResult" || std::ranges::find(answers, key) != answers.end();
}

std::span<const Endpoint> endpoints() {
    return table();
}
const Endpoint* endpointAt(std::string_view path) {
    return find(&Endpoint::path, path);
}
const Endpoint* endpointNamed(std::string_view name) {
    return find(&Endpoint::name, name);
}

Outcome<Fields> readWireBody(const Endpoint& endpoint, const HttpRequest& request) {
    if (!equalIgnoringCase(request.contentType, "application/json")) {
        return Failure{"Content-Type is not application/json"};
    }
    if (!equalIgnoringCase(request.accept, "application/json"))
        return Failure{"Accept is not application/json"};
    Outcome<JsonObject> object = readJsonObject(request.body);
    if (!object) return Failure{object.reason()};

    std::vector<std::string_view> keys{"offsetId", "encryptedCardId", "UUID", "brandId"};
    keys.insert(keys.end(), endpoint.keys.begin(), endpoint.keys.end());
    Fields body;
    for (auto& [key, value] : *object) {
        if (std::ranges::find(keys, key) == keys.end()) return Failure{"unexpected key \"" + key + "\""};
        auto* text = std::get_if<std::string>(&value);
        if (!text) return Failure{"\"" + key + "\" is not a text"};
        body.emplace(key, std::move(*text));
    }
    for (const std::string_view key : keys) {
        if (!body.contains(key)) return Failure{"missing key \"" + std::string(key) + "\""};
    }
    return body;
}

Outcome<Fields> decipherFields(const Fields& body, std::span<const std::uint8_t> key,
                               std::span<const std::uint8_t> iv) {
    Fields plain;
    for (const auto& [name, text] : body) {
        if (!isEnciphered(name)) continue;
        const auto cipher = base64Decode(text);
        const auto bytes = cipher ? aesCbcDecrypt(key, iv, *cipher) : std::nullopt;
        std::string value = bytes ? std::string(bytes->begin(), bytes->end()) : std::string{};
        if (!bytes || !isUtf8(value)) return Failure{"\"" + name + "\" does not decipher to text"};
        plain.emplace(name, std::move(value));
    }
    return plain;
}

std::string encipherFields(const std::vector<std::pair<std::string, std::string>>& plain,
                           std::span<const std::uint8_t> key, std::span<const std::uint8_t> iv) {
    JsonObject answer;
    for (const auto& [name, text] : plain) {
        const auto cipher = aesCbcEncrypt(key, iv, bytesOf(text));
        answer.emplace_back(name, cipher ? base64Encode(*cipher) : std::string{});
    }
    return writeJson(answer);
}

}  // namespace korvane::sandbox
