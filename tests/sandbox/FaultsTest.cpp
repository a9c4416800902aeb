// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include <chrono>
#include <thread>

#include "tests/sandbox/TestClient.h"

namespace korvane::sandbox {
namespace {

using std::chrono::steady_clock;

const std::string id = "card-virtual-active";

class FaultRules : public ::testing::Test {
  protected:
    void add(const std::string& rule) {
        const auto answer = bench_.client.send("POST", "/host/faults", rule);
        ASSERT_EQ(answer.reply.status, 200) << answer.reply.body;
    }
    TestClient::Answer pinSet() { return client.pinSet(id, "1357", token_); }
    TestClient::Answer status() {
        return client.call("getCardStatus", {{"CardId", id}, {"PciToken", token_}});
    }

    Bench bench_;
    TestClient& client = bench_.client;
    const std::string token_ = client.pciToken(id);
};

TEST_F(FaultRules, AnswersAreReplacedAsOftenAsAskedFor) {
    add(R"([{"endpoint":"pinSet","status":418},
            {"endpoint":"*","status":500,"result":"Failure: Expired Token","count":2},
            {"endpoint":"pinSet","body":"<html>"}])");
    EXPECT_EQ(status().reply.status, 500);
    EXPECT_EQ(pinSet().reply.status, 418);
    const auto expired = pinSet();
    EXPECT_EQ(expired.reply.status, 500);
    EXPECT_EQ(expired.result(), "Failure: Expired Token");
    EXPECT_EQ(pinSet().reply.body, "<html>");
    EXPECT_NE(client.card(id).at("pin"), "1357") << "a fault stands in for the endpoint";
    EXPECT_EQ(pinSet().result(), "Success");

    add(R"({"endpoint":"*","status":503,"count":9})");
    EXPECT_EQ(client.send("DELETE", "/host/faults").reply.status, 200);
    EXPECT_EQ(pinSet().reply.status, 200);
    const Texts counts = client.send("GET", "/host/requests").fields;
    EXPECT_EQ(counts.at("pinSet"), "5");
    EXPECT_EQ(counts.at("getCardStatus"), "1");
    EXPECT_EQ(counts.at("getCardImage"), "0");
}

TEST_F(FaultRules, ConnectionsAreResetAndAnswersDelayed) {
    add(R"([{"endpoint":"pinSet","reset":true},{"endpoint":"pinSet","delayMs":300},
            {"endpoint":"pinSet","delayMs":60000}])");
    EXPECT_THAT(pinSet().reply.failure, ::testing::HasSubstr("reset"));
    const auto begin = steady_clock::now();
    EXPECT_EQ(pinSet().result(), "Success");
    EXPECT_GE(steady_clock::now() - begin, std::chrono::milliseconds(300));

    std::thread waiting([this] { EXPECT_FALSE(pinSet().reply.answered()); });
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    const auto stopping = steady_clock::now();
    bench_.service.stop();
    waiting.join();
    EXPECT_LT(steady_clock::now() - stopping, std::chrono::seconds(5))
        << "stopping must not wait for a delay";
}

TEST_F(FaultRules, WhatAClientHoldsExpires) {
    add(R"({"endpoint":"pinSet","expireIv":true})");
    EXPECT_EQ(pinSet().result(), "Failure: IV is expired");
    EXPECT_EQ(pinSet().result(), "Failure: IV is expired") << "the service forgot it for good";
    client.renewIv();
    add(R"({"endpoint":"*","expirePciToken":true})");
    EXPECT_NE(client.smsToken(id), "");
    EXPECT_EQ(pinSet().result(), "Failure: Expired Token");
    add(R"({"endpoint":"pinSet","expireBearer":true})");
    EXPECT_EQ(pinSet().reply.status, 401);
    EXPECT_EQ(status().reply.status, 401);
    client.signIn();
    EXPECT_EQ(status().reply.status, 200);
}

TEST_F(FaultRules, BadRulesAreRefusedWithAReasonAndAListWhole) {
    const std::pair<const char*, const char*> rules[] = {
        {R"({"status":500})", "missing key"},
        {R"({"endpoint":"pinset","status":500})", "neither the name of an endpoint"},
        {R"({"endpoint":"pinSet"})", "no effect"},
        {R"({"endpoint":"pinSet","count":0,"status":500})", "count"},
        {R"({"endpoint":"pinSet","status":"500"})", "status"},
        {R"({"endpoint":"pinSet","status":100})", "status"},
        {R"({"endpoint":"pinSet","result":"a","body":"b"})", "more than one effect"},
        {R"({"endpoint":"pinSet","reset":true,"status":500})", "goes with"},
        {R"({"endpoint":"pinSet","reset":false})", "takes true"},
        {R"({"endpoint":"pinSet","delayMs":-1})", "delayMs"},
        {R"({"endpoint":"pinSet","explode":true})", "unexpected key"},
        {R"({"endpoint":"getBearerToken","expireBearer":true})", "no such token"},
        {R"([{"endpoint":"pinSet","status":500},{"endpoint":"pinSet"}])", "no effect"},
        {"nonsense", "not JSON"},
    };
    for (const auto& [rule, reason] : rules) {
        const auto answer = client.send("POST", "/host/faults", rule);
        EXPECT_EQ(answer.reply.status, 400) << rule;
        EXPECT_THAT(answer.fields.at("error"), ::testing::HasSubstr(reason)) << rule;
    }
    EXPECT_EQ(pinSet().result(), "Success") << "nothing of a refused list is in force";
}

}  // namespace
}  // namespace korvane::sandbox
