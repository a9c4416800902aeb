// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include <algorithm>
#include <set>
#include <thread>

#include "tests/sandbox/TestClient.h"

namespace korvane::sandbox {
namespace {

using std::chrono::steady_clock;
using ::testing::AllOf;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;

TEST(CardServiceTest, HoldsACardOfEveryTypeAndStatusAndASeedMakesAllElseRepeatable) {
    const auto run = [](std::optional<std::uint64_t> seed) {
        Bench bench({.tls = false, .seed = seed});
        std::string told;
        bench.service.onSms([&](const std::string& card, const std::string& code) {
            told = card + code + bench.service.lastSmsCode(card);  // it may ask back
        });
        std::set<std::string> kinds;
        for (const CardSummary& card : bench.service.cards()) kinds.insert(card.type + "/" + card.status);
        EXPECT_EQ(kinds.size(), 14U) << "four types and three statuses, and one unknown of each";
        const std::string pci = bench.client.pciToken("card-virtual-new");
        const std::string code = bench.service.lastSmsCode();
        EXPECT_EQ(told, "card-virtual-new" + code + code);
        return std::vector{bench.service.keyBase64(), bench.client.ivId, bench.client.bearer, pci, code};
    };
    const auto seeded = run(7), other = run(8), random = run({}), again = run({});
    EXPECT_EQ(seeded, run(7));
    for (std::size_t i = 0; i < 4; ++i) EXPECT_TRUE(seeded[i] != other[i] && random[i] != again[i]);
}

TEST(CardServiceTest, KeepsStateAndCaInFilesAcrossRestarts) {
    const std::string id = "card-virtual-active";
    const testing::TemporaryFolder folder;
    CardService service({.tlsDirectory = folder / "tls", .databaseFile = folder / "cards.db", .seed = 3});
    ASSERT_EQ(service.start(), "");
    TestClient before(service);
    const std::string token = before.pciToken(id);
    ASSERT_EQ(before.pinSet(id, "1357", token).result(), "Success");
    const std::string ca = service.caPem();
    service.stop();
    ASSERT_EQ(service.start(), "");
    EXPECT_EQ(service.caPem(), ca);
    TestClient after(service);
    after.bearer = before.bearer;
    after.ivId = before.ivId;
    after.iv = before.iv;
    EXPECT_EQ(after.card(id).at("pin"), "1357");
    EXPECT_EQ(after.pinSet(id, "2468", token).result(), "Success") << "tokens and the key last, too";
    EXPECT_EQ(std::filesystem::status(folder / "tls/ca-key.pem").permissions(), std::filesystem::perms{0600});
    service.stop();
    EXPECT_EQ(std::filesystem::status(folder / "cards.db").permissions(), std::filesystem::perms{0600});
    std::filesystem::remove(folder / "tls/ca-key.pem");
    EXPECT_THAT(service.start(), HasSubstr("cannot read")) << "half a CA must not be replaced in silence";
}

const std::string id = "card-virtual-active";

class FaultRules : public ::testing::Test {
  protected:
    void add(const std::string& rule) {
        const auto answer = bench_.client.send("POST", "/host/faults", rule);
        ASSERT_EQ(answer.status, 200) << answer.body;
    }
    TestClient::Answer pinSet() { return client.pinSet(id, "1357", token_); }

    Bench bench_;
    TestClient& client = bench_.client;
    const std::string token_ = client.pciToken(id);
};

TEST_F(FaultRules, NeitherADelayNorAHangNorAnIdleClientHoldsUpTheEnd) {
    add(R"([{"endpoint":"pinSet","delayMs":60000},{"endpoint":"getCardStatus","hang":true}])");
    TestClient other(bench_.service);
    std::thread delayed([this] { EXPECT_EQ(pinSet().status, 0); });
    std::thread hanging([&other] { EXPECT_EQ(other.call("getCardStatus", {}).status, 0); });
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    const auto stopping = steady_clock::now();
    bench_.service.stop();  // also on idle connections
    delayed.join();
    hanging.join();
    EXPECT_LT(steady_clock::now() - stopping, std::chrono::seconds(5));
}

TEST_F(FaultRules, AShareOfTheRequestsIsTheSameForTheSameSeed) {
    std::string runs[3];
    for (std::string& run : runs) {
        client.send("DELETE", "/host/faults");
        add(R"({"endpoint":"pinSet","status":500,"percent":40,"count":"forever","seed":)" +
            std::string(&run == runs ? "6}" : "7}"));
        for (int i = 0; i < 50; ++i) run += pinSet().status == 500 ? '!' : '.';
        EXPECT_NEAR(static_cast<double>(std::ranges::count(run, '!')), 20, 12);
    }
    EXPECT_TRUE(runs[0] != runs[1] && runs[1] == runs[2]);
}

TEST_F(FaultRules, ActInTheirOrderUntilTheyAreSpentAndResetBringsBackThoseOfTheStart) {
    Bench bench({.faultRules = R"({"endpoint":"pinSet","status":418})"});
    TestClient& other = bench.client;
    const std::string token = other.pciToken(id);
    other.send("POST", "/host/faults",
               R"([{"endpoint":"*","card":"x","reset":true},{"endpoint":"*","status":500}])");
    EXPECT_EQ(other.pinSet(id, "1357", token).status, 418) << "the first that fits";
    EXPECT_EQ(other.pinSet(id, "1357", token).status, 500);
    EXPECT_EQ(other.send("GET", "/host/faults").body,
              R"([{"endpoint":"*","card":"x","reset":true,"left":1}])");
    EXPECT_NE(other.card(id).at("pin"), "1357") << "a fault stands in for the endpoint";
    EXPECT_EQ(other.pinSet(id, "1357", token).result(), "Success");
    EXPECT_EQ(other.send("POST", "/host/reset").status, 200);
    EXPECT_EQ(other.send("GET", "/host/faults").body, R"([{"endpoint":"pinSet","status":418,"left":1}])");
    EXPECT_NE(other.card(id).at("pin"), "1357");
    EXPECT_EQ(other.send("POST", "/host/sms").status, 404) << "no code yet";
    EXPECT_EQ(other.call("pciTokenRequest", {{"CardId", id}}).status, 401) << "tokens are gone";
    EXPECT_EQ(other.signIn().result(), "Failure: IV is expired") << "and a client learns that its IV is";
}

TEST_F(FaultRules, TheJournalTellsRequestsDecipheredAndIsBounded) {
    ASSERT_EQ(pinSet().result(), "Success");
    const auto ask = [this](const std::string& query) {
        return client.send("GET", "/host/journal?" + query).body;
    };
    EXPECT_THAT(ask("endpoint=pinSet&card=" + id),
                ContainsRegex(R"("card":"card-virtual-active","request":\{"encryptedCardId":)"
                              R"("card-virtual-active","encryptedPIN":"1357",.*)"
                              R"("answer":\{"encryptedResult":"Success"\})"));
    EXPECT_THAT(ask("endpoint=pciTokenRequest"), HasSubstr("\"sms\":\"" + client.lastCode(id)));
    EXPECT_THAT(ask("since=-1"), HasSubstr("error"));
    client.call("cardImage", {{"CardId", id}, {"PciToken", token_}});
    EXPECT_LT(ask("endpoint=getCardImage").size(), 3000U) << "a picture is clipped";
    for (int i = 0; i < 1100; ++i) client.send("POST", "/api/sdk/pinSet", "{}");
    const std::string all = ask("last=5000");
    EXPECT_THAT(all, AllOf(HasSubstr("\"pinSet\":1101"), HasSubstr("\"number\":106,"),
                           Not(HasSubstr("\"number\":105,"))));
    EXPECT_THAT(ask("since=1104"), Not(HasSubstr("\"number\":1104,")));
}

TEST_F(FaultRules, BadRulesAreRefusedWithAReasonAndAListWhole) {
    const std::pair<const char*, const char*> rules[] = {
        {R"({"status":500})", "missing key"},
        {R"({"endpoint":"pinset","status":500})", "neither the name of an endpoint"},
        {R"({"endpoint":"pinSet","result":"a","body":"b"})", "more than one effect"},
        {R"({"endpoint":"pinSet","reset":true,"status":500})", "go with no answer"},
        {R"({"endpoint":"pinSet","delayMs":-1})", "delayMs"},
        {R"({"endpoint":"pinSet","percent":101,"status":500})", "from 1 to 100"},
        {R"({"endpoint":"pinSet","cutAfter":1,"resetAfter":1})", "more than one delivery"},
        {R"({"endpoint":"pinSet","dripBytes":1})", "go together"},
        {R"({"endpoint":"pinSet","without":"encryptedPan"})", "no answer of pinSet has the key"},
        {R"([{"endpoint":"pinSet","status":500},{"endpoint":"pinSet"}])", "rule 2: the rule has no effect"},
        {"[{}, 1]", "element 2: not a JSON object"},
    };
    for (const auto& [rule, reason] : rules) {
        const auto answer = client.send("POST", "/host/faults", rule);
        EXPECT_EQ(answer.status, 400) << rule;
        EXPECT_THAT(answer.fields.at("error"), HasSubstr(reason)) << rule;
    }
    EXPECT_EQ(pinSet().result(), "Success") << "nothing of a refused list is in force";
}

}  // namespace
}  // namespace korvane::sandbox
