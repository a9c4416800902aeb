// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include <thread>

#include "base/Base64.h"
#include "tests/sandbox/TestClient.h"

namespace korvane::sandbox {
namespace {

using std::chrono_literals::operator""s;
using ::testing::HasSubstr;

const std::string id = "card-physical-active";
const Texts plain{{"CardId", id}};

TEST(Refusals, BrokenWireFormatGetsAReason) {
    std::string log;
    Bench bench({.log = [&log](const std::string& line) { log += line + "\n"; }});
    TestClient& client = bench.client;
    client.signIn();
    const std::string good = client.bodyOf(plain);
    const auto refused = [&](const std::string& body, const std::string& reason, const Texts& changed = {}) {
        Texts headers = changed;
        headers.merge(Texts(client.wireHeaders));
        headers["Authorization"] = "Bearer " + client.bearer;
        const auto answer = client.send("POST", "/api/sdk/pciTokenRequest", body, headers);
        EXPECT_EQ(answer.reply.status, 400) << body;
        EXPECT_THAT(answer.fields.at("error"), HasSubstr(reason));
        EXPECT_THAT(log, HasSubstr("pciTokenRequest 400 " + answer.fields.at("error")));
    };
    const auto replaced = [&good](const std::string& from, const std::string& to) {
        return std::string(good).replace(good.find(from), from.size(), to);
    };
    refused("nonsense", "not JSON");
    refused("[]", "not a JSON object");
    refused("{\"offsetId\":\"\xff\"}", "not JSON");
    refused(std::string(500000, '['), "not JSON");
    refused(replaced("\"brandId\":\"\"", "\"brandId\":7"), "\"brandId\" is not a text");
    refused(replaced("\"brandId\"", "\"brand\""), "unexpected key \"brand\"");
    refused(replaced("\"UUID\":\"\",", ""), "missing key \"UUID\"");
    refused(replaced("\"UUID\":\"\"", "\"brandId\":\"\""), "occurs twice");
    refused(client.bodyOf({{"CardId", id}, {"PIN", "1"}}), "unexpected key \"encryptedPIN\"");
    const std::string head = good.substr(0, good.find("encryptedCardId")) + "encryptedCardId\":\"";
    for (const std::string cipher : {"", "not base64", "AAAA", "AAAAAAAAAAAAAAAAAAAAAA=="}) {
        refused(head + cipher + "\"}", "\"encryptedCardId\" does not decipher");
    }
    refused(client.bodyOf({{"CardId", "\xff"}}), "does not decipher to text");
    refused(std::string(1100000, ' '), "1 MiB");
    refused(good, "Content-Type", {{"Content-Type", "text/plain"}});
    refused(good, "Accept", {{"Accept", "*/*"}});
    EXPECT_EQ(client.call("pciTokenRequest", plain).result(), "Success");
    EXPECT_THAT(log, ::testing::Not(HasSubstr(client.lastCode(id))))
        << "no secret in the log unless asked for";
}

TEST(Refusals, UnknownTokensIvsAndCredentials) {
    Bench bench;
    TestClient& client = bench.client;
    client.renewIv();
    EXPECT_EQ(client.call("pciTokenRequest", plain).reply.status, 401);
    client.bearer = "unknown";
    EXPECT_EQ(client.call("pciTokenRequest", plain).reply.status, 401);
    const std::string key = base64Encode(client.key);
    const auto wrong = client.call("token", {{"CardId", id}, {"Username", key}, {"Password", key}});
    EXPECT_EQ(wrong.reply.status, 403);
    EXPECT_EQ(wrong.result(), "Failure: Invalid Credentials");
    client.signIn();
    client.ivId = "unknown";
    EXPECT_EQ(client.call("pciTokenRequest", plain).result(), "Failure: Invalid offsetId")
        << "readable under the newest IV";
}

TEST(Refusals, WhatHadItsTimeIsRefused) {
    Bench bearer({.bearerTokenLife = 2s}), iv({.ivLife = 2s}), pci({.pciTokenLife = 1s}),
        sms({.smsTokenLife = 1s});
    const std::string smsToken = sms.client.smsToken(id), token = pci.client.pciToken(id);
    iv.client.signIn();
    EXPECT_NE(bearer.client.smsToken(id), "") << "not before its time";
    std::this_thread::sleep_for(2.1s);
    EXPECT_EQ(bearer.client.call("pciTokenRequest", plain).reply.status, 401);
    EXPECT_EQ(sms.client.submit(id, smsToken, sms.client.lastCode(id)).result(), "Failure: Expired Token");
    EXPECT_EQ(pci.client.pinSet(id, "2468", token).result(), "Failure: Expired Token");
    EXPECT_NE(pci.client.card(id).at("pin"), "2468");
    const auto expired = iv.client.call("pciTokenRequest", plain);
    EXPECT_EQ(expired.reply.status, 200);
    EXPECT_EQ(expired.result(), "Failure: IV is expired") << "readable under the expired IV";
    const auto signIn = iv.client.signIn();
    EXPECT_EQ(signIn.reply.status, 400) << "there a client reads the result of failed requests alone";
    EXPECT_EQ(signIn.result(), "Failure: IV is expired");
}

TEST(Refusals, OnlyTheNewestCodeOfTheCardCountsOnceAndForFiveTries) {
    Bench bench;
    TestClient& client = bench.client;
    const std::string first = client.smsToken(id), firstCode = client.lastCode(id);
    std::string token = client.smsToken(id), code = client.lastCode(id);
    EXPECT_EQ(client.submit(id, first, firstCode).result(), "Failure: Invalid Token");
    EXPECT_EQ(client.submit("card-virtual-active", token, code).result(), "Failure: Invalid Token");
    EXPECT_EQ(client.submit(id, token, code).result(), "Success");
    EXPECT_EQ(client.submit(id, token, code).result(), "Failure: Invalid Token");

    token = client.smsToken(id);
    code = client.lastCode(id);
    const std::string wrong = code == "000000" ? "000001" : "000000";
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(client.submit(id, token, wrong).result(), "Failure: Incorrect SMS verification code");
    }
    EXPECT_EQ(client.submit(id, token, code).result(), "Failure: Invalid Token");
    EXPECT_NE(client.pciToken(id), "") << "a new code starts afresh";
}

TEST(Refusals, PciTokensAreBoundToTheirCardAndPinsAreFourDigits) {
    Bench bench;
    TestClient& client = bench.client;
    const std::string token = client.pciToken(id);
    const auto empty = client.pinSet(id, "1357", "");
    EXPECT_EQ(empty.reply.status, 400);
    EXPECT_EQ(empty.result(), "Failure: Invalid Token");
    EXPECT_EQ(client.pinSet(id, "1357", "unknown").result(), "Failure: Invalid Token");
    EXPECT_EQ(client.pinSet("card-virtual-active", "1357", token).result(), "Failure: Invalid Token");
    for (const std::string pin : {"", "135", "13579", "135x", " 135"}) {
        EXPECT_EQ(client.pinSet(id, pin, token).result(), "Failure: Invalid PIN");
    }
    EXPECT_EQ(client.pinSet(id, "1357", token).result(), "Success");
}

}  // namespace
}  // namespace korvane::sandbox
