// SPDX-License-Identifier: Apache-2.0
#include "tests/sandbox/TestClient.h"

#include "base/Base64.h"
#include "sandbox/Json.h"
#include "tests/platform/CurlTestSupport.h"
#include "transport/AesCbc.h"

namespace korvane::sandbox {

TestClient::TestClient(std::string url, const std::string& caPem, const std::string& keyBase64)
    : key(base64Decode(keyBase64).value()),
      url_(std::move(url)),
      session_({.caFile = caPem.empty() ? "" : folder_.file("ca.pem", caPem)}) {}

TestClient::Answer TestClient::send(const std::string& method, const std::string& path,
                                    const std::string& body, const Texts& headers) {
    Answer answer;
    answer.reply = testing::fetch(session_, {method, url_ + path, {headers.begin(), headers.end()}, body});
    const auto object = readJsonObject(answer.reply.body);
    if (!object) return answer;
    for (const auto& [name, value] : *object) {
        const auto* number = std::get_if<std::int64_t>(&value);
        const std::string text = number ? std::to_string(*number) : std::get<std::string>(value);
        if (!name.starts_with("encrypted")) {
            answer.fields[name] = text;
        } else if (const auto plain = aesCbcDecrypt(key, iv, base64Decode(text).value_or(key))) {
            answer.fields[name.substr(9)] = std::string(plain->begin(), plain->end());
        }
    }
    return answer;
}

void TestClient::renewIv() {
    const Texts fields = send("POST", "/host/iv").fields;
    ivId = fields.at("ivId");
    iv = base64Decode(fields.at("iv")).value();
}

std::string TestClient::bodyOf(const Texts& plain) const {
    JsonObject body{{"offsetId", ivId}, {"UUID", ""}, {"brandId", ""}};
    for (const auto& [name, text] : plain) {
        const auto cipher = aesCbcEncrypt(key, iv, std::vector<std::uint8_t>(text.begin(), text.end()));
        body.emplace_back("encrypted" + name, base64Encode(cipher.value()));
    }
    return writeJson(body);
}

TestClient::Answer TestClient::call(const std::string& endpoint, const Texts& plain) {
    Texts headers = wireHeaders;
    if (!bearer.empty()) headers["Authorization"] = "Bearer " + bearer;
    return send("POST", "/api/sdk/" + endpoint, bodyOf(plain), headers);
}

TestClient::Answer TestClient::signIn() {
    if (ivId.empty()) renewIv();
    const Answer answer =
        call("token", {{"CardId", ""}, {"Username", base64Encode(key)}, {"Password", base64Encode(iv)}});
    if (answer.result() == "Success") bearer = answer.fields.at("AccessToken");
    return answer;
}

std::string TestClient::lastCode(const std::string& cardId) {
    return send("POST", "/host/sms", writeJson(JsonObject{{"cardId", cardId}})).fields["code"];
}

std::string TestClient::smsToken(const std::string& cardId) {
    if (bearer.empty()) signIn();
    return call("pciTokenRequest", {{"CardId", cardId}}).fields["PciSmsToken"];
}

TestClient::Answer TestClient::submit(const std::string& cardId, const std::string& smsToken,
                                      const std::string& code) {
    return call(
        "pciTokenSubmission",
        {{"CardId", cardId}, {"PciSmsToken", smsToken}, {"TwoFactorCode", code}, {"UseBiometrics", "false"}});
}

std::string TestClient::pciToken(const std::string& cardId) {
    const std::string token = smsToken(cardId);
    return submit(cardId, token, lastCode(cardId)).fields["PciToken"];
}

TestClient::Answer TestClient::pinSet(const std::string& cardId, const std::string& pin,
                                      const std::string& token) {
    return call("pinSet", {{"CardId", cardId}, {"PIN", pin}, {"PciToken", token}});
}

}  // namespace korvane::sandbox
