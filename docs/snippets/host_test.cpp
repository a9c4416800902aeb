// SPDX-License-Identifier: Apache-2.0
// A host's own test: a device of fakes, a service that is scripted, a clock that is moved by hand.
#include <gtest/gtest.h>
#include <korvane/CloseNotification.h>
#include <korvane/Initialize.h>
#include <korvane/Journey.h>
#include <korvane/fakes/FakePorts.h>

// [test]
TEST(MyBank, AsksAgainWhenTheServiceIsDown) {
    korvane::FakePorts device;
    device.urlSession->answerWith([](const korvane::UrlRequest&) { return korvane::UrlReply{503, "", ""}; });
    korvane::initialize("AAECAwQFBgcICQoLDA0ODw==", "https://cards.test",
                        [](korvane::IvReply reply) { reply("iv-1", "AAECAwQFBgcICQoLDA0ODw=="); }, false, {},
                        {});
    std::string result;
    const auto closed = korvane::NotificationCenter::defaultCenter().observe(
        korvane::NotificationCloseUI, [&](const auto& info) { result = info.at("result"); });

    korvane::Journey journey(korvane::JourneyKind::setPIN, "card-7");
    journey.appear();
    device.mainQueue->runAll();
    EXPECT_EQ(journey.screen().view, "UhOhTryAgainView");
    EXPECT_EQ(journey.perform("sdk.errorPage.tryagain.button"), korvane::Journey::Outcome::done);
    EXPECT_EQ(result, "FAILURE");
}
// [/test]
