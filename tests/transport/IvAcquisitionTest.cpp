// SPDX-License-Identifier: Apache-2.0
#include "transport/IvAcquisition.h"

#include <thread>

#include "tests/support/ServiceFixture.h"

namespace korvane {
namespace {

class IvAcquisition : public ServiceFixture {
  protected:
    IvAcquisition() {
        dropIv();
        config.ivCallback = [this](IvReply reply) { host = std::move(reply); };
    }
    void ask() {
        requestIv([this](std::optional<KorvaneRetStruct> record, auto ivId, auto ivBytes) {
            EXPECT_TRUE(device.mainQueue->isMainThread());
            EXPECT_EQ(ivId && ivBytes, !record->error);
            outcomes.push_back(record->error ? record->errorMsg : *ivId);
        });
    }

    IvReply host;
    std::vector<std::string> outcomes;  ///< the IV's id, or the failure
};

TEST_F(IvAcquisition, StoresTheFirstGoodAnswerOfAnyLengthOnTheMainQueue) {
    for (const std::string& text : {ivText, std::string{"AAECAwQFBgcICQoL"}, std::string{}}) {
        ask();
        host("iv-7", text);
        host("late", "AAAA");
        EXPECT_TRUE(outcomes.empty() && !ivAtHand());
        settle();
        EXPECT_EQ(config.ivIdStr, "iv-7");
        EXPECT_EQ(config.ivByteArray.size(), text.size() / 4 * 3 - (text == ivText ? 2 : 0));
        EXPECT_EQ(std::exchange(outcomes, {}), std::vector<std::string>{"iv-7"});
        EXPECT_EQ(ivAtHand(), !text.empty());
        EXPECT_TRUE(config.gotInitialIV);
        dropIv();
    }
}

TEST_F(IvAcquisition, ABadAnswerLeavesTheStoredPairAlone) {
    const std::tuple<std::optional<std::string>, std::optional<std::string>, std::string> cases[] = {
        {std::nullopt, "AAAA", "ivId is nil"},
        {"iv-1", std::nullopt, "iv is nil"},
        {"iv-1", "AAECAwQF\nBgcICQoLDA0ODw==", "iv: Data(base64Encoded:) failed"},
    };
    config.ivIdStr = "old";
    for (const auto& [ivId, ivBase64, errorMsg] : cases) {
        ask();
        host(ivId, ivBase64);
        settle();
        EXPECT_EQ(outcomes.back(), errorMsg);
        EXPECT_EQ(printed(), "doIvCallbackAndDecoding - " + errorMsg);
    }
    config.ivCallback = nullptr;
    outcomes.clear();
    ask();
    settle();
    EXPECT_EQ(outcomes, std::vector<std::string>{"ivId is nil"});
    EXPECT_EQ(config.ivIdStr, "old");
    EXPECT_TRUE(config.ivByteArray.empty() && !config.gotInitialIV);
    EXPECT_EQ(ivFailure(std::nullopt).errorMsg, "resStructIv is nil");
}

TEST_F(IvAcquisition, AHostThatLetsGoUnansweredReleasesTheContinuationOnTheMainThread) {
    std::thread::id releasedOn;
    std::shared_ptr<void> held{nullptr, [&](void*) { releasedOn = std::this_thread::get_id(); }};
    requestIv([held = std::move(held)](auto&&...) { ADD_FAILURE(); });
    std::thread{[reply = std::exchange(host, nullptr)]() mutable { reply = nullptr; }}.join();
    EXPECT_EQ(releasedOn, std::thread::id{});
    settle();
    EXPECT_EQ(releasedOn, std::this_thread::get_id());
}

TEST_F(IvAcquisition, TheHostMayReplaceItsCallbackFromInside) {
    config.ivCallback = [this, id = std::string(100, 'x')](const IvReply& reply) {
        config.ivCallback = nullptr;
        reply(id, ivText);
    };
    ask();
    settle();
    EXPECT_EQ(config.ivIdStr, std::string(100, 'x'));
}

}  // namespace
}  // namespace korvane
