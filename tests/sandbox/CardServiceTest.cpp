// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include <chrono>
#include <set>

#include "base/Base64.h"
#include "tests/sandbox/TestClient.h"

namespace korvane::sandbox {
namespace {

using ::testing::HasSubstr;

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
    const auto begin = std::chrono::steady_clock::now();
    bench.service.stop();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
}

}  // namespace
}  // namespace korvane::sandbox
