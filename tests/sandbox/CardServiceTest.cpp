// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
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
        std::set<std::string> kinds;
        for (const CardSummary& card : bench.service.cards()) kinds.insert(card.type + "/" + card.status);
        for (const std::string type : {"physical", "virtual", "wearable", "paywallet"}) {
            for (const std::string status : {"A1", "BT", "P2"})
                EXPECT_TRUE(kinds.contains(type + "/" + status));
        }
        EXPECT_EQ(kinds.size(), 14U) << "and one of an unknown type, and one of an unknown status";
        const std::string pci = bench.client.pciToken("card-virtual-new");
        return std::vector{bench.service.keyBase64(), bench.client.ivId, bench.client.bearer, pci,
                           bench.service.lastSmsCode()};
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
    EXPECT_FALSE(before.send("POST", "/host/iv").reply.answered());
    ASSERT_EQ(service.start(), "");
    EXPECT_EQ(service.caPem(), ca);
    TestClient after(service);
    after.bearer = before.bearer;
    after.ivId = before.ivId;
    after.iv = before.iv;
    EXPECT_EQ(after.card(id).at("pin"), "1357");
    EXPECT_EQ(after.pinSet(id, "2468", token).result(), "Success") << "tokens last, too";
    EXPECT_EQ(std::filesystem::status(folder / "tls/ca-key.pem").permissions(), std::filesystem::perms{0600});
    service.stop();
    const std::filesystem::path file = folder / "cards.db";
    EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms{0600})
        << "it holds the key";
    CardService unseeded({.databaseFile = file});
    ASSERT_EQ(unseeded.start(), "");
    EXPECT_EQ(unseeded.keyBase64(), base64Encode(before.key)) << "the key is kept";
    EXPECT_EQ(CardService({.databaseFile = file, .keyBase64 = unseeded.keyBase64()}).start(), "");
    EXPECT_THAT(CardService({.databaseFile = file, .keyBase64 = "AAAAAAAAAAAAAAAAAAAAAA=="}).start(),
                HasSubstr("the key is not the one of"));

    std::filesystem::remove(folder / "tls/ca-key.pem");
    EXPECT_THAT(service.start(), HasSubstr("cannot read")) << "half a CA must not be replaced in silence";
}

TEST(CardServiceTest, ListensElsewhereOnlyOverTlsAndItsCertificateIsForThatAddress) {
    const testing::TemporaryFolder folder;
    // The whole block is this machine's, but only 127.0.0.1 is in every certificate.
    CardService service({.address = "127.0.0.9", .tlsDirectory = folder / "tls"});
    ASSERT_EQ(service.start(), "");
    EXPECT_THAT(service.url(), HasSubstr("https://127.0.0.9:"));
    EXPECT_EQ(TestClient(service).send("POST", "/host/iv").reply.status, 200);
    EXPECT_THAT(CardService({.address = "127.0.0.8", .tlsDirectory = folder / "tls"}).start(),
                HasSubstr("is not for 127.0.0.8"));
}

TEST(CardServiceTest, TellsOfEachSmsAndNoIdleClientHoldsUpTheEnd) {
    Bench bench;
    std::string seen;
    bench.service.onSms([&](const std::string& card, const std::string& code) {
        EXPECT_EQ(bench.service.lastSmsCode(card), code) << "the callback may ask back";
        seen = card + code;
    });
    EXPECT_NE(bench.client.pciToken("card-virtual-new"), "");
    EXPECT_EQ(seen, "card-virtual-new" + bench.service.lastSmsCode("card-virtual-new"));
    EXPECT_EQ(bench.client.send("GET", "/host/cards/none").reply.status, 404);
    EXPECT_EQ(bench.client.send("POST", "/host/cards").reply.status, 405);
    const auto begin = steady_clock::now();
    bench.service.stop();
    EXPECT_LT(steady_clock::now() - begin, std::chrono::seconds(5));
}

const std::string id = "card-virtual-active";

class FaultRules : public ::testing::Test {
  protected:
    void add(const std::string& rule) {
        const auto answer = bench_.client.send("POST", "/host/faults", rule);
        ASSERT_EQ(answer.reply.status, 200) << answer.reply.body;
    }
    TestClient::Answer pinSet() { return client.pinSet(id, "1357", token_); }

    Bench bench_;
    TestClient& client = bench_.client;
    const std::string token_ = client.pciToken(id);
};

TEST_F(FaultRules, NeitherADelayNorAHangHoldsUpTheEnd) {
    add(R"([{"endpoint":"pinSet","delayMs":60000},{"endpoint":"getCardStatus","hang":true}])");
    TestClient other(bench_.service);
    std::thread delayed([this] { EXPECT_FALSE(pinSet().reply.answered()); });
    std::thread hanging([&other] { EXPECT_FALSE(other.call("getCardStatus", {}).reply.answered()); });
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    const auto stopping = steady_clock::now();
    bench_.service.stop();
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
        for (int i = 0; i < 50; ++i) run += pinSet().reply.status == 500 ? '!' : '.';
        EXPECT_NEAR(static_cast<double>(std::ranges::count(run, '!')), 20, 12);
    }
    EXPECT_TRUE(runs[0] != runs[1] && runs[1] == runs[2]);
}

TEST_F(FaultRules, ActInTheirOrderUntilTheyAreSpentAndResetBringsBackThoseOfTheStart) {
    Bench bench({.faultRules = R"({"endpoint":"pinSet","status":418})"});
    TestClient& other = bench.client;
    const std::string token = other.pciToken(id);
    other.send("POST", "/host/faults", R"({"endpoint":"*","card":"x","status":500,"count":"forever"})");
    other.send("POST", "/host/faults", R"({"endpoint":"*","status":500,"count":2})");
    EXPECT_EQ(other.pinSet(id, "1357", token).reply.status, 418) << "the first that fits";
    EXPECT_EQ(other.pinSet(id, "1357", token).reply.status, 500);
    EXPECT_EQ(other.send("GET", "/host/faults").reply.body,
              R"([{"endpoint":"*","card":"x","status":500,"count":"forever","left":"forever"},)"
              R"({"endpoint":"*","status":500,"count":2,"left":1}])");
    EXPECT_EQ(other.pinSet(id, "1357", token).reply.status, 500);
    EXPECT_NE(other.card(id).at("pin"), "1357") << "a fault stands in for the endpoint";
    EXPECT_EQ(other.pinSet(id, "1357", token).result(), "Success");
    EXPECT_EQ(other.send("POST", "/host/reset").reply.status, 200);
    EXPECT_EQ(other.send("GET", "/host/faults").reply.body,
              R"([{"endpoint":"pinSet","status":418,"left":1}])");
    EXPECT_NE(other.card(id).at("pin"), "1357");
    EXPECT_EQ(other.send("POST", "/host/sms").reply.status, 404) << "no code yet";
    EXPECT_EQ(other.call("pciTokenRequest", {{"CardId", id}}).reply.status, 401) << "tokens are gone";
    EXPECT_EQ(other.signIn().result(), "Failure: IV is expired") << "and a client learns that its IV is";
    EXPECT_EQ(CardService({.faultRules = "[{}]"}).start(), "rule 1: missing key \"endpoint\"");
}

TEST_F(FaultRules, TheJournalTellsRequestsDecipheredAndIsBounded) {
    ASSERT_EQ(pinSet().result(), "Success");
    const auto ask = [this](const std::string& query) {
        return client.send("GET", "/host/journal?" + query).reply.body;
    };
    EXPECT_THAT(ask("endpoint=pinSet&card=" + id),
                ContainsRegex(R"("card":"card-virtual-active","request":\{"encryptedCardId":)"
                              R"("card-virtual-active","encryptedPIN":"1357",.*)"
                              R"("answer":\{"encryptedResult":"Success"\})"));
    EXPECT_THAT(ask("endpoint=pciTokenRequest"), HasSubstr("\"sms\":\"" + client.lastCode(id)));
    for (const char* bad : {"endpoint=none", "since=-1", "last=x", "colour=red"})
        EXPECT_THAT(ask(bad), HasSubstr("error")) << bad;
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
        {R"({"endpoint":"pinSet"})", "no effect"},
        {R"({"endpoint":"pinSet","count":0,"status":500})", "count"},
        {R"({"endpoint":"pinSet","status":"500"})", "status"},
        {R"({"endpoint":"pinSet","status":100})", "status"},
        {R"({"endpoint":"pinSet","result":"a","body":"b"})", "more than one effect"},
        {R"({"endpoint":"pinSet","reset":true,"status":500})", "go with no answer"},
        {R"({"endpoint":"pinSet","reset":false})", "takes true"},
        {R"({"endpoint":"pinSet","delayMs":-1})", "delayMs"},
        {R"({"endpoint":"pinSet","count":"always","status":500})", "\"forever\""},
        {R"({"endpoint":"pinSet","card":"","status":500})", "\"card\" is empty"},
        {R"({"endpoint":"pinSet","percent":101,"status":500})", "from 1 to 100"},
        {R"({"endpoint":"pinSet","seed":1,"status":500})", "goes with \"percent\""},
        {R"({"endpoint":"pinSet","cutAfter":1,"resetAfter":1})", "more than one delivery"},
        {R"({"endpoint":"pinSet","dripBytes":0,"dripMs":1})", "from 1 to"},
        {R"({"endpoint":"pinSet","dripBytes":1})", "go together"},
        {R"({"endpoint":"pinSet","without":"encryptedPan"})", "no answer of pinSet has the key"},
        {R"({"endpoint":"getBearerToken","expireBearer":true})", "no such token"},
        {R"([{"endpoint":"pinSet","status":500},{"endpoint":"pinSet"}])", "rule 2: the rule has no effect"},
        {"[{}, 1]", "element 2: not a JSON object"},
    };
    for (const auto& [rule, reason] : rules) {
        const auto answer = client.send("POST", "/host/faults", rule);
        EXPECT_EQ(answer.reply.status, 400) << rule;
        EXPECT_THAT(answer.fields.at("error"), HasSubstr(reason)) << rule;
    }
    EXPECT_EQ(pinSet().result(), "Success") << "nothing of a refused list is in force";
}

}  // namespace
}  // namespace korvane::sandbox
