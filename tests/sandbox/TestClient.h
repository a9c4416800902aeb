// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>
#include <httplib.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "base/Base64.h"
#include "sandbox/CardService.h"
#include "sandbox/Json.h"
#include "tests/support/TemporaryFolder.h"
#include "transport/AesCbc.h"

namespace korvane::sandbox {

using Texts = std::map<std::string, std::string>;

/// A client of its own making: it trusts the service's CA alone, enciphers, and deciphers what comes back.
/// The keys that begin with "encrypted" are named without it here.
class TestClient {
  public:
    struct Answer {
        int status = 0;  ///< 0: none came
        std::string body;
        Texts fields;  ///< of a JSON object; the enciphered ones deciphered
        std::string result() const { return fields.contains("Result") ? fields.at("Result") : ""; }
    };

    explicit TestClient(const CardService& service)
        : key(base64Decode(service.keyBase64()).value()), client_(service.url()) {
        if (!service.caPem().empty()) client_.set_ca_cert_path(folder_.file("ca.pem", service.caPem()));
        client_.set_keep_alive(true);
        client_.set_tcp_nodelay(true);
    }

    Answer send(const std::string& method, const std::string& path, const std::string& body = {},
                const Texts& headers = {}) {
        httplib::Request request;
        request.method = method;
        request.path = path;
        request.headers.insert(headers.begin(), headers.end());
        request.body = body;
        const httplib::Result result = client_.send(request);
        if (!result) return {};
        Answer answer{result->status, result->body, {}};
        const auto object = readJsonObject(answer.body);
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

    /// Asks for an IV, and enciphers under it from now on.
    void renewIv() {
        const Texts fields = send("POST", "/host/iv").fields;
        ivId = fields.at("ivId");
        iv = base64Decode(fields.at("iv")).value();
    }
    /// A wire body: the plain fields enciphered, and the keys that every request carries.
    std::string bodyOf(const Texts& plain) const {
        JsonObject body{{"offsetId", ivId}, {"UUID", ""}, {"brandId", ""}};
        for (const auto& [name, text] : plain) {
            const auto cipher = aesCbcEncrypt(key, iv, std::vector<std::uint8_t>(text.begin(), text.end()));
            body.emplace_back("encrypted" + name, base64Encode(cipher.value()));
        }
        return writeJson(body);
    }
    Answer post(const std::string& endpoint, const std::string& body) {
        Texts headers = wireHeaders;
        if (!bearer.empty()) headers["Authorization"] = "Bearer " + bearer;
        return send("POST", "/api/sdk/" + endpoint, body, headers);
    }
    Answer call(const std::string& endpoint, const Texts& plain) { return post(endpoint, bodyOf(plain)); }

    Answer signIn() {
        if (ivId.empty()) renewIv();
        Answer answer =
            call("token", {{"CardId", ""}, {"Username", base64Encode(key)}, {"Password", base64Encode(iv)}});
        if (answer.result() == "Success") bearer = answer.fields.at("AccessToken");
        return answer;
    }
    std::string lastCode(const std::string& cardId) {
        return send("POST", "/host/sms", writeJson(JsonObject{{"cardId", cardId}})).fields["code"];
    }
    /// The token that goes with the code that is sent.
    std::string smsToken(const std::string& cardId) {
        if (bearer.empty()) signIn();
        return call("pciTokenRequest", {{"CardId", cardId}}).fields["PciSmsToken"];
    }
    Answer submit(const std::string& cardId, const std::string& smsToken, const std::string& code) {
        return call("pciTokenSubmission", {{"CardId", cardId},
                                           {"PciSmsToken", smsToken},
                                           {"TwoFactorCode", code},
                                           {"UseBiometrics", "false"}});
    }
    /// The SMS road up to the PCI token of the card.
    std::string pciToken(const std::string& cardId) {
        const std::string token = smsToken(cardId);
        return submit(cardId, token, lastCode(cardId)).fields["PciToken"];
    }
    Answer pinSet(const std::string& cardId, const std::string& pin, const std::string& token) {
        return call("pinSet", {{"CardId", cardId}, {"PIN", pin}, {"PciToken", token}});
    }
    Texts card(const std::string& cardId) { return send("GET", "/host/cards/" + cardId).fields; }

    std::string ivId;
    std::vector<std::uint8_t> iv;
    std::string bearer;
    std::vector<std::uint8_t> key;
    Texts wireHeaders{{"Content-Type", "application/json"}, {"Accept", "application/json"}};

  private:
    const testing::TemporaryFolder folder_;
    httplib::Client client_;
};

/// A service that must start, and a client of it.
struct Bench {
    explicit Bench(CardServiceOptions options = {}) : service(std::move(options)) { EXPECT_EQ(error, ""); }

    CardService service;
    const std::string error = service.start();
    TestClient client{service};
};

}  // namespace korvane::sandbox
