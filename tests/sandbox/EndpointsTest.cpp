// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include <thread>

#include "tests/sandbox/TestClient.h"

namespace korvane::sandbox {
namespace {

using namespace std::chrono_literals;
using ::testing::HasSubstr;

const std::string id = "card-physical-active";
const Texts plain{{"CardId", id}};

class Endpoints : public ::testing::Test {
  protected:
    /// The result of a call with a PCI token of its own; the card's status and PIN then.
    std::string called(const std::string& endpoint, const std::string& cardId, Texts fields) {
        fields.insert({{"CardId", cardId}, {"PciToken", client.pciToken(cardId)}});
        const std::string result = client.call(endpoint, fields).result();
        return result + "; " + client.card(cardId).at("status") + client.card(cardId).at("pin");
    }

    Bench bench;
    TestClient& client = bench.client;
};

TEST_F(Endpoints, ActivateOnceTheCardsOfTheirTypeForWhoHasThem) {
    for (const std::string type : {"physical", "virtual", "wearable", "paywallet"}) {
        const std::string cardId = "card-" + type + "-new", own = type == "paywallet" ? "physical" : type;
        const Texts card = client.card(cardId);
        const auto activated = [&](const std::string& endpoint, Texts fields = {}) {
            const std::string lastFour = card.at("pan").substr(card.at("pan").size() - 4);
            if (endpoint == "physical") fields.insert({{"LastFourOfPan", lastFour}, {"CVV", card.at("cvv")}});
            fields.emplace("PIN", "1357");
            return called(endpoint + "CardActivationAndPinSet", cardId, fields);
        };
        EXPECT_EQ(activated(own == "virtual" ? "wearable" : "virtual"), "Failure: Invalid Card Type; P2");
        if (own == "physical") {
            EXPECT_EQ(activated(own, {{"CVV", "000"}}), "Failure: Invalid Card Details; P2");
            EXPECT_EQ(activated(own, {{"LastFourOfPan", "0000"}}), "Failure: Invalid Card Details; P2");
        }
        EXPECT_EQ(activated(own), "Success; A11357");
        EXPECT_EQ(activated(own, {{"PIN", "2468"}}), "Failure: Card already active; A11357");
    }
}

TEST_F(Endpoints, PinsAreFourDigitsAndLiftingAFreezeGoesBackToWhereTheCardWas) {
    EXPECT_EQ(called("pinSet", "card-physical-new", {{"PIN", "1357"}}), "Failure: Card not active; P2");
    for (const std::string pin : {"135", "13579", " 135"})
        EXPECT_EQ(called("pinSet", id, {{"PIN", pin}}), "Failure: Invalid PIN; A14827");
    EXPECT_EQ(called("pinSet", id, {{"PIN", "1357"}}), "Success; A11357");
    for (const auto& [cardId, before, other] :
         {std::tuple{id, "A1", "P2"}, std::tuple{std::string{"card-virtual-new"}, "P2", "A1"}}) {
        const std::string pin = client.card(cardId).at("pin"), refused = "Failure: Invalid Status; ";
        for (const auto& [status, result, now] : {std::tuple{other, refused, before},
                                                  {"BT", "Success; ", "BT"},
                                                  {other, refused, "BT"},
                                                  {before, "Success; ", before},
                                                  {"ZZ", refused, before}}) {
            EXPECT_EQ(called("cardStatus", cardId, {{"Status", status}}), result + now + pin);
        }
    }
}

TEST_F(Endpoints, OnlyTheNewestCodeOfTheCardCountsOnceAndForFiveTries) {
    const std::string first = client.smsToken(id), firstCode = client.lastCode(id);
    const std::string spent = "Failure: Invalid Token";
    std::string token = client.smsToken(id), code = client.lastCode(id);
    EXPECT_EQ(client.submit(id, first, firstCode).result(), spent);
    EXPECT_EQ(client.submit("card-virtual-active", token, code).result(), spent);
    const auto good = client.submit(id, token, code);
    EXPECT_EQ(good.result() + good.fields.at("BiometricsAuthenticationTimer"), "Success300");
    EXPECT_EQ(client.submit(id, token, code).result(), spent);

    token = client.smsToken(id);
    code = client.lastCode(id);
    const std::string wrong = code == "000000" ? "000001" : "000000";
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(client.submit(id, token, wrong).result(), "Failure: Incorrect SMS verification code");
    EXPECT_EQ(client.submit(id, token, code).result(), spent);
    EXPECT_NE(client.pciToken(id), "") << "a new code starts afresh";
}

TEST_F(Endpoints, UnknownTokensIvsAndCredentialsAreRefused) {
    client.renewIv();
    client.bearer = "unknown";
    EXPECT_EQ(client.call("pciTokenRequest", plain).status, 401);
    const std::string key = base64Encode(client.key);
    const auto wrong = client.call("token", {{"CardId", id}, {"Username", key}, {"Password", key}});
    EXPECT_EQ(std::to_string(wrong.status) + wrong.result(), "403Failure: Invalid Credentials");
    client.bearer.clear();
    const std::string token = client.pciToken(id);
    EXPECT_EQ(client.pinSet(id, "1357", "unknown").result(), "Failure: Invalid Token");
    EXPECT_EQ(client.pinSet("card-virtual-active", "1357", token).result(), "Failure: Invalid Token");
    client.ivId = "unknown";
    EXPECT_EQ(client.call("pciTokenRequest", plain).result(), "Failure: Invalid offsetId")
        << "readable under the newest IV";
}

TEST(Lives, WhatHadItsTimeIsRefused) {
    Bench bearer({.bearerTokenLife = 2s}), iv({.ivLife = 2s}), pci({.pciTokenLife = 1s}),
        sms({.smsTokenLife = 1s});
    const std::string smsToken = sms.client.smsToken(id), token = pci.client.pciToken(id);
    iv.client.signIn();
    EXPECT_NE(bearer.client.smsToken(id), "") << "not before its time";
    std::this_thread::sleep_for(2.1s);
    EXPECT_EQ(bearer.client.call("pciTokenRequest", plain).status, 401);
    EXPECT_EQ(sms.client.submit(id, smsToken, sms.client.lastCode(id)).result(), "Failure: Expired Token");
    EXPECT_EQ(pci.client.pinSet(id, "2468", token).result(), "Failure: Expired Token");
    // Readable under the expired IV; from the token's endpoint a client reads results of failed requests
    // alone.
    for (const auto& [answer, status] :
         {std::pair{iv.client.call("pciTokenRequest", plain), 200}, {iv.client.signIn(), 400}}) {
        EXPECT_EQ(answer.status, status);
        EXPECT_EQ(answer.result(), "Failure: IV is expired");
    }
}

TEST(WireFormat, GetsAReasonWhereItIsBroken) {
    std::string log;
    Bench bench({.log = [&log](const std::string& line) { log += line + "\n"; }});
    TestClient& client = bench.client;
    client.signIn();
    const std::string good = client.bodyOf(plain), end = R"("encryptedCardId":")";
    const auto refused = [&](const std::string& body, const std::string& reason) {
        const auto answer = client.post("pciTokenRequest", body);
        EXPECT_EQ(answer.status, 400) << body;
        EXPECT_THAT(answer.fields.at("error"), HasSubstr(reason));
        EXPECT_THAT(log, HasSubstr("pciTokenRequest 400 " + answer.fields.at("error")));
    };
    const auto replaced = [&good](const std::string& from, const std::string& to) {
        return std::string(good).replace(good.find(from), from.size(), to);
    };
    refused(std::string(500000, '['), "not JSON");
    refused(replaced("\"brandId\":\"\"", "\"brandId\":7"), "\"brandId\" is not a text");
    refused(replaced("\"brandId\"", "\"brand\""), "unexpected key \"brand\"");
    refused(replaced("\"UUID\":\"\",", ""), "missing key \"UUID\"");
    refused(client.bodyOf({{"CardId", id}, {"PIN", "1"}}), "unexpected key \"encryptedPIN\"");
    refused(good.substr(0, good.find(end)) + end + "AAAA\"}", "\"encryptedCardId\" does not decipher");
    refused(client.bodyOf({{"CardId", "\xff"}}), "does not decipher to text");
    refused(std::string(1100000, ' '), "1 MiB");
    const std::string right = std::exchange(client.wireHeaders["Accept"], "text/plain");
    refused(good, "Accept");
    client.wireHeaders["Accept"] = right;
    EXPECT_EQ(client.call("pciTokenRequest", plain).result(), "Success");
    EXPECT_THAT(log, ::testing::Not(HasSubstr(client.lastCode(id)))) << "no secret unless asked for";
}

}  // namespace
}  // namespace korvane::sandbox
