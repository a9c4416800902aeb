// SPDX-License-Identifier: Apache-2.0
#include "tests/sandbox/TestClient.h"

#include <gtest/gtest.h>

#include "base/Base64.h"
#include "sandbox/Json.h"
#include "transport/AesCbc.h"

namespace korvane::sandbox {
namespace {

std::size_t append(char* data, std::size_t size, std::size_t count, void* text) {
    static_cast<std::string*>(text)->append(data, size * count);
    return size * count;
}

}  // namespace

TestClient::TestClient(const CardService& service)
    : TestClient(service.url(), service.caPem(), service.keyBase64()) {}

TestClient::TestClient(std::string url, std::string caPem, const std::string& keyBase64)
    : key(base64Decode(keyBase64).value()),
      url_(std::move(url)),
      caPem_(std::move(caPem)),
      curl_(curl_easy_init()) {}

TestClient::Answer TestClient::send(const std::string& method, const std::string& path,
                                    const std::string& body, const std::vector<std::string>& headers) {
    CURL* const curl = curl_.get();
    curl_easy_reset(curl);  // keeps the connection
    Answer answer;
    curl_slist* list = nullptr;
    for (const std::string& header : headers) list = curl_slist_append(list, header.c_str());
    curl_blob ca{caPem_.data(), caPem_.size(), CURL_BLOB_NOCOPY};
    curl_easy_setopt(curl, CURLOPT_URL, (url_ + path).c_str());
    curl_easy_setopt(curl, CURLOPT_CAINFO_BLOB, &ca);
    curl_easy_setopt(curl, CURLOPT_CAPATH, nullptr);
    curl_easy_setopt(curl, CURLOPT_CUSTOMREQUEST, method.c_str());
    if (!body.empty()) {
        curl_easy_setopt(curl, CURLOPT_POSTFIELDSIZE, static_cast<long>(body.size()));
        curl_easy_setopt(curl, CURLOPT_POSTFIELDS, body.c_str());
    }
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, list);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl, CURLOPT_TIMEOUT, 20L);
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, append);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &answer.body);
    answer.transport = curl_easy_perform(curl);
    curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &answer.status);
    curl_slist_free_all(list);
    if (const auto object = readJsonObject(answer.body)) {
        for (const auto& [name, value] : *object) {
            const auto* text = std::get_if<std::string>(&value);
            const auto* number = std::get_if<std::int64_t>(&value);
            std::string& field = answer.fields[name] = text ? *text : number ? std::to_string(*number) : "";
            if (!name.starts_with("encrypted")) continue;
            const auto cipher = base64Decode(field);
            const auto plain = cipher ? aesCbcDecrypt(key, iv, *cipher) : std::nullopt;
            field = plain ? std::string(plain->begin(), plain->end()) : "(does not decipher)";
        }
    }
    return answer;
}

void TestClient::renewIv() {
    const Answer answer = send("POST", "/host/iv");
    ivId = answer.fields.at("ivId");
    iv = base64Decode(answer.fields.at("iv")).value();
}

std::string TestClient::encipher(const std::string& plain) const {
    return base64Encode(
        aesCbcEncrypt(key, iv, std::vector<std::uint8_t>(plain.begin(), plain.end())).value());
}

std::string TestClient::bodyOf(const Texts& plain) const {
    JsonObject body{{"offsetId", ivId}, {"UUID", ""}, {"brandId", ""}};
    for (const auto& [name, text] : plain) body.emplace_back(name, encipher(text));
    return writeJson(body);
}

TestClient::Answer TestClient::call(const std::string& path, const Texts& plain) {
    std::vector<std::string> headers = wireHeaders;
    if (!bearer.empty()) headers.push_back("Authorization: Bearer " + bearer);
    return send("POST", path, bodyOf(plain), headers);
}

void TestClient::signIn() {
    if (ivId.empty()) renewIv();
    const Answer answer = call("/api/sdk/token", {{"encryptedCardId", ""},
                                                  {"encryptedUsername", base64Encode(key)},
                                                  {"encryptedPassword", base64Encode(iv)}});
    ASSERT_EQ(answer.result(), "Success") << answer.body;
    bearer = answer.fields.at("encryptedAccessToken");
}

std::string TestClient::lastCode(const std::string& cardId) {
    return send("POST", "/host/sms", writeJson(JsonObject{{"cardId", cardId}})).fields["code"];
}

std::string TestClient::pciToken(const std::string& cardId) {
    if (bearer.empty()) signIn();
    const Answer request = call("/api/sdk/pciTokenRequest", {{"encryptedCardId", cardId}});
    EXPECT_EQ(request.result(), "Success") << request.body;
    Answer submission = call("/api/sdk/pciTokenSubmission",
                             {{"encryptedCardId", cardId},
                              {"encryptedPciSmsToken", request.fields.at("encryptedPciSmsToken")},
                              {"encryptedTwoFactorCode", lastCode(cardId)},
                              {"encryptedUseBiometrics", "false"}});
    EXPECT_EQ(submission.result(), "Success") << submission.body;
    return submission.fields["encryptedPciToken"];
}

TestClient::Answer TestClient::pinSet(const std::string& cardId, const std::string& pin,
                                      const std::string& token) {
    return call("/api/sdk/pinSet",
                {{"encryptedCardId", cardId}, {"encryptedPIN", pin}, {"encryptedPciToken", token}});
}

Bench::Bench(CardServiceOptions options) : service(std::move(options)) {
    const std::string error = service.start();
    if (!error.empty()) throw std::runtime_error(error);
    client = std::make_unique<TestClient>(service);
}

}  // namespace korvane::sandbox
