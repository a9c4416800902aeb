// SPDX-License-Identifier: Apache-2.0
#include "transport/IvAcquisition.h"

#include <thread>

#include "tests/support/ServiceFixture.h"

namespace korvane {
namespace {

class IvAcquisition : public ServiceFixture {
  protected:
    struct Outcome {
        std::optional<KorvaneRetStruct> result;
        std::optional<std::string> ivId;
        std::optional<std::vector<std::uint8_t>> ivBytes;
    };

    IvAcquisition() {
        dropIv();
        config.ivCallback = [this](IvReply reply) { host = std::move(reply); };
    }

    void ask() {
        requestIv([this](auto result, auto ivId, auto ivBytes) {
            EXPECT_TRUE(device.mainQueue->isMainThread());
            outcomes.push_back({std::move(result), std::move(ivId), std::move(ivBytes)});
        });
    }

    IvReply host;
    std::vector<Outcome> outcomes;
};

TEST_F(IvAcquisition, StoresAGoodAnswer) {
    ask();
    host("iv-7", "AAECAwQFBgcICQoLDA0ODw==");
    EXPECT_TRUE(outcomes.empty());
    EXPECT_FALSE(ivAtHand());
    settle();
    ASSERT_EQ(outcomes.size(), 1u);
    EXPECT_FALSE(outcomes[0].result->error);
    EXPECT_EQ(outcomes[0].ivId, "iv-7");
    EXPECT_EQ(outcomes[0].ivBytes, iv);
    EXPECT_EQ(config.ivIdStr, "iv-7");
    EXPECT_EQ(config.ivByteArray, iv);
    EXPECT_TRUE(config.gotInitialIV);
    EXPECT_TRUE(ivAtHand());
}

TEST_F(IvAcquisition, AnyLengthIsStoredYetNoBytesAreNoIv) {
    ask();
    host("iv-8", "");
    settle();
    EXPECT_EQ(outcomes[0].ivBytes, std::vector<std::uint8_t>{});
    EXPECT_EQ(config.ivIdStr, "iv-8");
    EXPECT_FALSE(ivAtHand());
    ask();
    host("iv-9", "AAECAwQFBgcICQoL");
    settle();
    EXPECT_EQ(config.ivByteArray.size(), 12u);
    EXPECT_TRUE(ivAtHand());
}

TEST_F(IvAcquisition, ABadAnswerLeavesTheStoredPairAlone) {
    struct Case {
        std::optional<std::string> ivId, iv;
        std::string errorMsg;
    };
    const Case cases[] = {
        {std::nullopt, "AAAA", "ivId is nil"},
        {std::nullopt, std::nullopt, "ivId is nil"},
        {"iv-1", std::nullopt, "iv is nil"},
        {"iv-1", "AAECAwQF\nBgcICQoLDA0ODw==", "iv: Data(base64Encoded:) failed"},
    };
    config.ivIdStr = "old";
    config.ivByteArray = {1};
    for (const Case& each : cases) {
        outcomes.clear();
        ask();
        host(each.ivId, each.iv);
        settle();
        ASSERT_EQ(outcomes.size(), 1u);
        EXPECT_TRUE(outcomes[0].result->error);
        EXPECT_EQ(outcomes[0].result->errorMsg, each.errorMsg);
        EXPECT_FALSE(outcomes[0].ivId || outcomes[0].ivBytes);
        EXPECT_EQ(lines(), std::vector{"doIvCallbackAndDecoding - " + each.errorMsg});
    }
    EXPECT_EQ(config.ivIdStr, "old");
    EXPECT_EQ(config.ivByteArray, std::vector<std::uint8_t>{1});
    EXPECT_FALSE(config.gotInitialIV);
    EXPECT_EQ(ivFailure(std::nullopt).errorMsg, "resStructIv is nil");

    config.ivCallback = nullptr;
    ask();
    settle();
    EXPECT_EQ(outcomes.back().result->errorMsg, "ivId is nil");
}

TEST_F(IvAcquisition, OnlyTheFirstOfManyAnswersCounts) {
    ask();
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([reply = host] { reply("iv-t", "AAECAwQFBgcICQoLDA0ODw=="); });
    for (std::thread& thread : threads) thread.join();
    settle();
    host("late", "AAAA");
    settle();
    EXPECT_EQ(outcomes.size(), 1u);
    EXPECT_EQ(config.ivIdStr, "iv-t");
}

TEST_F(IvAcquisition, AHostThatLetsGoUnansweredReleasesTheContinuationOnTheMainThread) {
    std::thread::id releasedOn;
    bool ran = false;
    std::shared_ptr<void> held{nullptr, [&](void*) { releasedOn = std::this_thread::get_id(); }};
    requestIv([held = std::move(held), &ran](auto&&...) { ran = true; });
    std::thread{[reply = std::exchange(host, nullptr)]() mutable { reply = nullptr; }}.join();
    EXPECT_EQ(releasedOn, std::thread::id{});
    settle();
    EXPECT_EQ(releasedOn, std::this_thread::get_id());
    EXPECT_FALSE(ran);
}

TEST_F(IvAcquisition, TheHostMayInitializeAnewFromItsCallback) {
    config.ivCallback = [this, large = std::string(100, 'x')](const IvReply& reply) {
        config.ivCallback = nullptr;
        reply(large, "AAECAwQFBgcICQoLDA0ODw==");
    };
    ask();
    settle();
    EXPECT_EQ(config.ivIdStr, std::string(100, 'x'));
}

}  // namespace
}  // namespace korvane
