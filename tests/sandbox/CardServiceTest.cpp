// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <set>
#include <thread>

#include "tests/sandbox/TestClient.h"

namespace korvane::sandbox {
namespace {

using testing::HasSubstr;

std::string freshDirectory() {
    std::string path = testing::TempDir() + "sandboxXXXXXX";
    return ::mkdtemp(path.data());
}

TEST(CardServiceTest, HoldsACardOfEveryTypeAndStatus) {
    Bench bench;
    std::set<std::string> kinds;
    for (const CardSummary& card : bench.service.cards()) {
        kinds.insert(card.type + "/" + card.status);
        EXPECT_EQ(bench.client->card(card.id).at("name"), card.name);
    }
    for (const std::string type : {"physical", "virtual", "wearable", "paywallet"}) {
        for (const std::string status : {"A1", "BT", "P2"}) EXPECT_TRUE(kinds.contains(type + "/" + status));
    }
    EXPECT_EQ(kinds.size(), 14U) << "and one of an unknown type, and one of an unknown status";
    EXPECT_EQ(bench.client->send("GET", "/host/cards/none").status, 404);
    EXPECT_EQ(bench.client->send("POST", "/host/cards").status, 405);
    EXPECT_EQ(bench.client->send("GET", "/").status, 404);
    EXPECT_EQ(bench.client->send("POST", "/host/sms").status, 404) << "no code yet";
}

TEST(CardServiceTest, OnlyItsOwnCaIsTrustedAndEveryLoopbackNameFits) {
    Bench bench;
    CardService other;
    ASSERT_EQ(other.start(), "");
    TestClient stranger(bench.service.url(), other.caPem(), other.keyBase64());
    EXPECT_EQ(stranger.send("POST", "/host/iv").transport, CURLE_PEER_FAILED_VERIFICATION);
    std::string numeric = bench.service.url();
    numeric.replace(numeric.find("localhost"), 9, "127.0.0.1");
    TestClient byAddress(numeric, bench.service.caPem(), bench.service.keyBase64());
    EXPECT_EQ(byAddress.send("POST", "/host/iv").status, 200);
}

TEST(CardServiceTest, ASeedMakesKeyIvsAndCodesRepeatable) {
    const auto run = [](std::optional<std::uint64_t> seed) {
        Bench bench({.tls = false, .seed = seed});
        const std::string pci = bench.client->pciToken("card-virtual-new");
        return std::vector{bench.service.keyBase64(), bench.client->ivId, bench.client->bearer, pci,
                           bench.service.lastSmsCode()};
    };
    EXPECT_EQ(run(7), run(7));
    const auto seeded = run(7);
    const auto other = run(8);
    const auto random = run({});
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_NE(seeded[i], other[i]);
        EXPECT_NE(random[i], run({})[i]);
    }
}

TEST(CardServiceTest, KeepsStateAndCaInFilesAcrossRestarts) {
    const std::string directory = freshDirectory();
    const CardServiceOptions options{
        .tlsDirectory = directory + "/tls", .databaseFile = directory + "/cards.db", .seed = 3};
    CardService service(options);
    ASSERT_EQ(service.start(), "");
    EXPECT_EQ(service.start(), "already running");
    TestClient before(service);
    const std::string token = before.pciToken("card-virtual-active");
    ASSERT_EQ(before.pinSet("card-virtual-active", "1357", token).result(), "Success");
    const std::string ca = service.caPem();
    service.stop();
    EXPECT_NE(before.send("POST", "/host/iv").transport, CURLE_OK);
    EXPECT_TRUE(service.cards().empty());

    ASSERT_EQ(service.start(), "");
    EXPECT_EQ(service.caPem(), ca);
    TestClient after(service.url(), ca, service.keyBase64());
    after.bearer = before.bearer;
    after.ivId = before.ivId;
    after.iv = before.iv;
    EXPECT_EQ(after.card("card-virtual-active").at("pin"), "1357");
    EXPECT_EQ(after.pinSet("card-virtual-active", "2468", token).result(), "Success") << "tokens last, too";
    struct stat keyFile {};
    ASSERT_EQ(::stat((directory + "/tls/ca-key.pem").c_str(), &keyFile), 0);
    EXPECT_EQ(keyFile.st_mode & 0777, 0600U);
    service.stop();

    std::filesystem::remove(directory + "/tls/ca-key.pem");
    EXPECT_THAT(service.start(), HasSubstr("cannot read")) << "half a CA must not be replaced in silence";
    std::filesystem::remove_all(directory);
}

TEST(CardServiceTest, ReportsWhatItCannotUse) {
    const std::string directory = freshDirectory();
    std::ofstream(directory + "/text") << "This is no database, and it is longer than a header.";
    std::ofstream(directory + "/ca.pem") << "no certificate";
    std::ofstream(directory + "/ca-key.pem") << "no key";
    const auto error = [](CardServiceOptions options) { return CardService(std::move(options)).start(); };
    EXPECT_THAT(error({.keyBase64 = "***"}), HasSubstr("not base64"));
    EXPECT_THAT(error({.keyBase64 = "AAAA"}), HasSubstr("3 bytes"));
    EXPECT_THAT(error({.databaseFile = directory + "/text"}), HasSubstr("not a database"));
    EXPECT_THAT(error({.databaseFile = directory + "/none/cards.db"}), HasSubstr("unable to open"));
    EXPECT_THAT(error({.tlsDirectory = directory}), HasSubstr("holds no certificate"));
    EXPECT_THAT(error({.tlsDirectory = directory + "/text/tls"}), HasSubstr("cannot make the directory"));
    Bench bench({.tls = false});
    const int port = std::stoi(bench.service.url().substr(bench.service.url().rfind(':') + 1));
    EXPECT_THAT(error({.port = port}), HasSubstr("cannot listen")) << "two services must not share a port";
    std::filesystem::remove_all(directory);
}

TEST(CardServiceTest, TellsOfEachSmsAndServesManyClientsAtOnce) {
    CardService service;
    std::mutex mutex;
    std::map<std::string, std::string> seen;
    service.onSms([&](const std::string& card, const std::string& code) {
        EXPECT_EQ(service.lastSmsCode(card), code) << "the callback may ask back";
        const std::lock_guard lock(mutex);
        seen[card] = code;
    });
    ASSERT_EQ(service.start(), "");
    const std::vector<CardSummary> cards = service.cards();
    std::vector<std::thread> clients;
    for (const CardSummary& card : cards) {
        clients.emplace_back([&service, id = card.id] {
            TestClient client(service);
            EXPECT_NE(client.pciToken(id), "");
        });
    }
    for (std::thread& client : clients) client.join();
    EXPECT_EQ(seen.size(), cards.size());
    for (const auto& [card, code] : seen) EXPECT_EQ(service.lastSmsCode(card), code);

    TestClient idle(service);
    idle.renewIv();
    const auto begin = std::chrono::steady_clock::now();
    service.stop();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5))
        << "an idle client holds nothing up";
}

}  // namespace
}  // namespace korvane::sandbox
