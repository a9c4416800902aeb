// SPDX-License-Identifier: Apache-2.0
// A host's own test: a card service in memory with a device of fakes around it, and no network.
#include <gtest/gtest.h>
#include <korvane/CloseNotification.h>
#include <korvane/Journey.h>
#include <korvane/fakes/ScriptedCardService.h>

// [test]
TEST(MyBank, SetsThePinThatWasTyped) {
    korvane::ScriptedCardService service;
    service.next("getCardStatus", service.result("Failure: Expired Token"));  // once, so an SMS is needed
    std::string result;
    const auto closed = korvane::NotificationCenter::defaultCenter().observe(
        korvane::NotificationCloseUI, [&](const auto& info) { result = info.at("result"); });

    korvane::Journey journey(korvane::JourneyKind::setPIN, "card-7");
    journey.appear();
    service.settle();
    const auto type = [&](const char* digits) { journey.replaceText(digits), service.settle(); };
    const auto tap = [&](const char* control) { journey.perform(control), service.settle(); };
    tap("sdk.sms.explain.button");
    type("350912");  // any code is right
    type("8046"), tap("sdk.setpin.button");
    type("8046"), tap("sdk.confirmpin.button");
    EXPECT_EQ(journey.screen().view, "SuccessPinSetView");
    EXPECT_EQ(service.sent("pinSet", "encryptedPIN"), "8046");
    tap("sdk.success.setpin.button");
    EXPECT_EQ(result, "SUCCESS");
}
// [/test]
