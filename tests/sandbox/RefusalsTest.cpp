// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include <thread>

#include "base/Base64.h"
#include "sandbox/Json.h"
#include "tests/sandbox/TestClient.h"

namespace korvane::sandbox {
namespace {

using testing::HasSubstr;
using testing::Not;

const std::string id = "card-physical-active";

TEST(Refusals, BrokenWireFormatGetsAReason) {
    std::string log;
    Bench bench({.log = [&log](const std::string& line) { log += line + "\n"; }});
    TestClient& client = *bench.client;
    client.signIn();
    const std::string good = client.bodyOf({{"encryptedCardId", id}});
    std::vector<std::string> headers = client.wireHeaders;
    headers.push_back("Authorization: Bearer " + client.bearer);
    const auto refused = [&](const std::string& body, const std::string& reason) {
        const auto answer = client.send("POST", "/api/sdk/pciTokenRequest", body, headers);
        EXPECT_EQ(answer.status, 400) << body;
        EXPECT_THAT(answer.fields.at("error"), HasSubstr(reason));
        EXPECT_THAT(log, HasSubstr("pciTokenRequest 400 " + answer.fields.at("error")));
    };
    const auto replaced = [&good](const std::string& from, const std::string& to) {
        std::string body = good;
        return body.replace(body.find(from), from.size(), to);
    };
    refused("nonsense", "not JSON");
    refused("[]", "not a JSON object");
    refused("{\"offsetId\":\"\xff\"}", "not JSON");
    refused(std::string(500000, '['), "not JSON");
    refused(replaced("\"brandId\":\"\"", "\"brandId\":7"), "\"brandId\" is not a text");
    refused(replaced("\"brandId\"", "\"brand\""), "unexpected key \"brand\"");
    refused(replaced("\"UUID\":\"\",", ""), "missing key \"UUID\"");
    refused(replaced("\"UUID\":\"\"", "\"brandId\":\"\""), "occurs twice");
    refused(client.bodyOf({{"encryptedCardId", id}, {"encryptedPIN", "1"}}),
            "unexpected key \"encryptedPIN\"");
    const std::string head =
        "{\"offsetId\":\"" + client.ivId + "\",\"UUID\":\"\",\"brandId\":\"\",\"encryptedCardId\":\"";
    for (const std::string cipher : {"", "not base64", "AAAA", "AAAAAAAAAAAAAAAAAAAAAA=="}) {
        refused(head + cipher + "\"}", "\"encryptedCardId\" does not decipher");
    }
    refused(client.bodyOf({{"encryptedCardId", "\xff"}}), "does not decipher to text");
    refused(std::string(1100000, ' '), "1 MiB");
    headers[0] = "Content-Type: text/plain";
    refused(good, "Content-Type");
    headers[0] = "Content-Type: application/json";
    headers[1] = "Accept: */*";
    refused(good, "Accept");
    headers[1] = "Accept: application/json";
    EXPECT_EQ(client.send("POST", "/api/sdk/pciTokenRequest", good, headers).result(), "Success");
    EXPECT_THAT(log, Not(HasSubstr(client.lastCode(id)))) << "no secret in the log unless asked for";
}

TEST(Refusals, EveryEndpointButTheTokensAsksForABearerToken) {
    Bench bench({.bearerTokenLife = std::chrono::seconds(2)});
    TestClient& client = *bench.client;
    client.renewIv();
    const Texts plain{{"encryptedCardId", id}};
    EXPECT_EQ(client.call("/api/sdk/pciTokenRequest", plain).status, 401);
    client.bearer = "unknown";
    EXPECT_EQ(client.call("/api/sdk/pciTokenRequest", plain).body, "{}");
    client.signIn();
    EXPECT_EQ(client.call("/api/sdk/pciTokenRequest", plain).result(), "Success");
    std::this_thread::sleep_for(std::chrono::milliseconds(2100));
    EXPECT_EQ(client.call("/api/sdk/pciTokenRequest", plain).status, 401);
    const auto wrong = client.call("/api/sdk/token", {{"encryptedCardId", id},
                                                      {"encryptedUsername", base64Encode(client.key)},
                                                      {"encryptedPassword", base64Encode(client.key)}});
    EXPECT_EQ(wrong.status, 403);
    EXPECT_EQ(wrong.result(), "Failure: Invalid Credentials");
}

TEST(Refusals, ExpiredAndUnknownIvsAreToldApart) {
    Bench bench({.ivLife = std::chrono::seconds(2)});
    TestClient& client = *bench.client;
    client.signIn();
    const std::string oldId = client.ivId;
    const auto oldIv = client.iv;
    std::this_thread::sleep_for(std::chrono::milliseconds(2100));
    const auto expired = client.call("/api/sdk/pciTokenRequest", {{"encryptedCardId", id}});
    EXPECT_EQ(expired.status, 200);
    EXPECT_EQ(expired.result(), "Failure: IV is expired") << "readable under the expired IV";
    client.renewIv();
    client.ivId = "unknown";
    const auto unknown = client.call("/api/sdk/pciTokenRequest", {{"encryptedCardId", id}});
    EXPECT_EQ(unknown.status, 200);
    EXPECT_EQ(unknown.result(), "Failure: Invalid offsetId") << "readable under the newest IV";
    client.ivId = oldId;
    client.iv = oldIv;
    const auto signIn = client.call("/api/sdk/token", {{"encryptedCardId", id},
                                                       {"encryptedUsername", base64Encode(client.key)},
                                                       {"encryptedPassword", base64Encode(client.iv)}});
    EXPECT_EQ(signIn.status, 400) << "there a client reads the result of failed requests alone";
    EXPECT_EQ(signIn.result(), "Failure: IV is expired");
}

class Codes : public testing::Test {
  protected:
    void SetUp() override { client().signIn(); }
    TestClient& client() { return *bench_.client; }

    std::string request(const std::string& card = id) {
        return client()
            .call("/api/sdk/pciTokenRequest", {{"encryptedCardId", card}})
            .fields.at("encryptedPciSmsToken");
    }
    std::string submit(const std::string& smsToken, const std::string& code, const std::string& card = id) {
        return client()
            .call("/api/sdk/pciTokenSubmission", {{"encryptedCardId", card},
                                                  {"encryptedPciSmsToken", smsToken},
                                                  {"encryptedTwoFactorCode", code},
                                                  {"encryptedUseBiometrics", "false"}})
            .result();
    }

  private:
    Bench bench_;
};

TEST_F(Codes, FiveWrongOnesSpendTheAttempt) {
    const std::string token = request();
    const std::string code = client().lastCode(id);
    const std::string wrong = code == "000000" ? "000001" : "000000";
    for (int i = 0; i < 5; ++i) EXPECT_EQ(submit(token, wrong), "Failure: Incorrect SMS verification code");
    EXPECT_EQ(submit(token, code), "Failure: Invalid Token");
    const std::string next = request();
    EXPECT_EQ(submit(next, client().lastCode(id)), "Success") << "a new code starts afresh";
}

TEST_F(Codes, OnlyTheNewestOneOfTheCardCountsAndOnlyOnce) {
    const std::string first = request();
    const std::string firstCode = client().lastCode(id);
    const std::string second = request();
    EXPECT_EQ(submit(first, firstCode), "Failure: Invalid Token");
    EXPECT_EQ(submit(second, client().lastCode(id), "card-virtual-active"), "Failure: Invalid Token");
    EXPECT_EQ(submit(second, client().lastCode(id)), "Success");
    EXPECT_EQ(submit(second, client().lastCode(id)), "Failure: Invalid Token");
}

TEST_F(Codes, PciTokensAreBoundToTheirCard) {
    const auto empty = client().pinSet(id, "1357", "");
    EXPECT_EQ(empty.status, 400);
    EXPECT_EQ(empty.result(), "Failure: Invalid Token");
    const auto unknown = client().pinSet(id, "1357", "unknown");
    EXPECT_EQ(unknown.status, 200);
    EXPECT_EQ(unknown.result(), "Failure: Invalid Token");
    const std::string token = client().pciToken(id);
    EXPECT_EQ(client().pinSet("card-virtual-active", "1357", token).result(), "Failure: Invalid Token");
    for (const std::string pin : {"", "135", "13579", "135x", " 135"}) {
        EXPECT_EQ(client().pinSet(id, pin, token).result(), "Failure: Invalid PIN");
    }
    EXPECT_EQ(client().pinSet(id, "1357", token).result(), "Success");
    EXPECT_EQ(client().card(id).at("pin"), "1357");
}

TEST(Lifetimes, SmsAndPciTokensExpire) {
    Bench shortPci({.pciTokenLife = std::chrono::seconds(1)});
    Bench shortSms({.smsTokenLife = std::chrono::seconds(1)});
    const std::string token = shortPci.client->pciToken(id);
    TestClient& client = *shortSms.client;
    client.signIn();
    const auto request = client.call("/api/sdk/pciTokenRequest", {{"encryptedCardId", id}});
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    EXPECT_EQ(shortPci.client->pinSet(id, "2468", token).result(), "Failure: Expired Token");
    EXPECT_NE(shortPci.client->card(id).at("pin"), "2468");
    const auto late = client.call("/api/sdk/pciTokenSubmission",
                                  {{"encryptedCardId", id},
                                   {"encryptedPciSmsToken", request.fields.at("encryptedPciSmsToken")},
                                   {"encryptedTwoFactorCode", client.lastCode(id)},
                                   {"encryptedUseBiometrics", "false"}});
    EXPECT_EQ(late.result(), "Failure: Expired Token");
}

}  // namespace
}  // namespace korvane::sandbox
