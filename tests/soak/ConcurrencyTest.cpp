// SPDX-License-Identifier: Apache-2.0
// Meant for the data-race checker above all.
#include <gtest/gtest.h>
#include <korvane/Initialize.h>
#include <korvane/Journey.h>

#include <memory>
#include <thread>
#include <vector>

#include "apps/common/HostCalls.h"
#include "tests/soak/RealDevice.h"

namespace korvane::testing {
namespace {

class Concurrency : public ::testing::Test {
  protected:
    std::unique_ptr<Journey> begin(JourneyKind kind, const std::string& cardId) {
        auto journey = std::make_unique<Journey>(kind, cardId);
        journey->appear();
        return journey;
    }
    void on(Journey& journey, const std::string& view, const std::string& control,
            const std::string& digits = {}) {
        ASSERT_TRUE(device.until([&] { return journey.screen().view == view && !journey.screen().spinner; }))
            << journey.screen().view << ", not " << view;
        if (!digits.empty()) journey.replaceText(digits);
        if (control.empty()) return;
        ASSERT_EQ(journey.perform(control), Journey::Outcome::done) << view;
    }
    void verify(Journey& journey, const std::string& cardId) {
        on(journey, "SMSExplainView", "sdk.sms.explain.button");
        on(journey, "EnterSMSCodeView", "");
        journey.replaceText(device.smsCode(cardId));
    }
    std::string pinOf(const std::string& cardId) {
        return textMember(device.ask("GET", "/host/cards/" + cardId), "pin");
    }

    /// A host that answers each question from eight threads at once; one answer counts.
    IvCallback fromManyThreads() {
        return [this](const IvReply& reply) {
            const auto iv = device.ask("POST", "/host/iv", "{}");
            for (int i = 0; i < 8; ++i) {
                threads.emplace_back(
                    [reply, id = textMember(iv, "ivId"), bytes = textMember(iv, "iv")] { reply(id, bytes); });
            }
        };
    }
    void initializeWith(const IvCallback& callback) {
        initialize(device.key, device.url, callback, false, {}, {});
    }

    RealDevice device;
    std::vector<std::jthread> threads;
};

TEST_F(Concurrency, AHostAnswersFromManyThreadsAtOnce) {
    initializeWith(fromManyThreads());
    const auto journey = begin(JourneyKind::setPIN, "card-physical-active");
    verify(*journey, "card-physical-active");
    on(*journey, "EnterCardPINView", "sdk.setpin.button", "1357");
    device.ask("POST", "/host/faults", R"({"endpoint": "pinSet", "expireIv": true, "count": 5})");
    on(*journey, "ConfirmCardPINView", "sdk.confirmpin.button", "1357");
    on(*journey, "SuccessPinSetView", "sdk.success.setpin.button");
    EXPECT_EQ(pinOf("card-physical-active"), "1357");
}

TEST_F(Concurrency, JourneysGoAndTheHostIsSetUpAnewWithCallsOnTheirWay) {
    device.ask("POST", "/host/faults", R"({"endpoint": "*", "count": "forever", "delayMs": 4})");
    for (int i = 0; i < 60; ++i) {
        if (i % 3 == 0) initializeWith(fromManyThreads());
        if (i % 3 == 1) device.initialize(true);
        auto journey = begin(static_cast<JourneyKind>(i % 2 * 2), "card-virtual-active");
        device.pass(std::chrono::milliseconds(i % 12));
        if (i % 2 == 0) journey->perform("sdk.sms.explain.button");
        device.reader->answer(i % 4 == 0);
    }
    threads.clear();
    device.initialize();
    const auto journey = begin(JourneyKind::getCardImage, "card-virtual-active");
    verify(*journey, "card-virtual-active");
    on(*journey, "CardImage_NoNav", "xmark");
}

TEST_F(Concurrency, ALateAnswerFindsNobody) {
    std::vector<IvReply> replies;
    initializeWith([&replies](const IvReply& reply) { replies.push_back(reply); });
    for (int i = 0; i < 20; ++i) begin(JourneyKind::setPIN, "card-physical-active");
    device.initialize();
    for (const IvReply& reply : replies) threads.emplace_back([reply] { reply(std::nullopt, std::nullopt); });
    replies.clear();
    const auto journey = begin(JourneyKind::setPIN, "card-physical-active");
    on(*journey, "SMSExplainView", "");
}

TEST_F(Concurrency, TwoJourneysOfTwoCardsSetEachTheirOwnPin) {
    device.initialize();
    const std::string one = "card-physical-active", other = "card-virtual-active";
    const auto first = begin(JourneyKind::setPIN, one);
    const auto second = begin(JourneyKind::setPIN, other);
    verify(*first, one);
    on(*first, "EnterCardPINView", "sdk.setpin.button", "1111");
    verify(*second, other);
    on(*second, "EnterCardPINView", "sdk.setpin.button", "2468");
    on(*first, "YouCanDoBetterView", "sdk.youcandobetter.button");
    on(*first, "EnterCardPINView", "sdk.setpin.button", "1357");
    on(*first, "ConfirmCardPINView", "sdk.confirmpin.button", "1357");
    verify(*first, one);  // the token that is there now is the other card's
    on(*first, "SuccessPinSetView", "");
    on(*second, "ConfirmCardPINView", "sdk.confirmpin.button", "2468");
    verify(*second, other);
    on(*second, "SuccessPinSetView", "");
    EXPECT_EQ(pinOf(one), "1357");
    EXPECT_EQ(pinOf(other), "2468");
}

}  // namespace
}  // namespace korvane::testing
