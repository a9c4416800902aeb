// SPDX-License-Identifier: Apache-2.0
// Meant for the data-race checker above all.
#include <gtest/gtest.h>

#include <thread>

#include "tests/soak/RealDevice.h"

namespace korvane::testing {
namespace {

const std::string one = "card-physical-active", other = "card-virtual-active";

class Concurrency : public ::testing::Test {
  protected:
    /// A host that answers each question from eight threads at once; one answer counts.
    void initializeWithManyThreads() {
        device.initialize(false, device.url, [this](const IvReply& reply) {
            const Json iv = device.ask("POST", "/host/iv", "{}");
            for (int i = 0; i < 8; ++i)
                threads.emplace_back([reply, iv] { reply(std::string(iv["ivId"]), std::string(iv["iv"])); });
        });
    }

    RealDevice device;
    std::vector<std::jthread> threads;
};

TEST_F(Concurrency, JourneysGoAndTheHostIsSetUpAnewWithCallsOnTheirWay) {
    std::vector<IvReply> late;
    device.ask("POST", "/host/faults", R"({"endpoint": "*", "count": "forever", "delayMs": 4})");
    for (int i = 0; i < 60; ++i) {
        if (i % 4 == 0) initializeWithManyThreads();
        if (i % 4 == 1) device.initialize(true);
        if (i % 4 == 2)
            device.initialize(false, device.url, [&late](const IvReply& reply) { late.push_back(reply); });
        const auto journey = device.begin(static_cast<JourneyKind>(i % 3), other);
        device.pass(std::chrono::milliseconds(1 + i % 12));
        journey->perform("sdk.sms.explain.button");
        device.reader->answer(i % 8 == 1);
    }
    for (const IvReply& reply : std::exchange(late, {}))
        threads.emplace_back([reply] { reply(std::nullopt, std::nullopt); });
    threads.clear();
    device.initialize();
    const auto journey = device.begin(JourneyKind::getCardImage, other);
    device.verify(*journey, other);
    device.on(*journey, "CardImage_NoNav", "xmark");
}

TEST_F(Concurrency, TwoJourneysOfTwoCardsSetEachTheirOwnPin) {
    initializeWithManyThreads();
    device.ask("POST", "/host/faults", R"({"endpoint": "pinSet", "expireIv": true, "count": 5})");
    const auto first = device.begin(JourneyKind::setPIN, one);
    const auto second = device.begin(JourneyKind::setPIN, other);
    device.verify(*first, one);
    device.on(*first, "EnterCardPINView", "sdk.setpin.button", "1357");
    device.verify(*second, other);
    device.on(*second, "EnterCardPINView", "sdk.setpin.button", "2468");
    device.on(*first, "ConfirmCardPINView", "sdk.confirmpin.button", "1357");
    device.verify(*first, one);  // the token that is there now is the other card's
    device.on(*first, "SuccessPinSetView");
    device.on(*second, "ConfirmCardPINView", "sdk.confirmpin.button", "2468");
    device.verify(*second, other);
    device.on(*second, "SuccessPinSetView");
    for (const auto& [card, pin] : {std::pair{one, "1357"}, {other, "2468"}})
        EXPECT_EQ(device.ask("GET", "/host/cards/" + card)["pin"], pin);
}

}  // namespace
}  // namespace korvane::testing
