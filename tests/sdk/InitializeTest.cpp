// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <korvane/CloseNotification.h>
#include <korvane/Initialize.h>

#include <string>

#include "platform/fakes/FakePorts.h"
#include "sdk/SdkConfig.h"

namespace korvane {
namespace {

class Initialize : public testing::Test {
  protected:
    bool call(const std::string& key, const std::string& url = "https://cards.example",
              bool biometrics = false) {
        const auto callback = [](const IvReply&) {};
        return initialize(key, url, callback, biometrics, colors, radii, "Ring", std::nullopt);
    }

    FakePorts device;
    SdkConfig& config = SdkConfig::sharedInstance();
    KorvaneColors colors;
    KorvaneCornerRadii radii;
};

TEST_F(Initialize, StoresWhatTheHostHandsOverAndRefusesAKeyThatIsNotStrictBase64) {
    EXPECT_TRUE(config.useJSONbodyForAPIRequests);
    bool answered = false;  // by the default, before a host has handed over its own
    config.ivCallback([&](const auto& ivId, const auto& iv) { answered = !ivId && !iv; });
    EXPECT_TRUE(answered);
    colors.primary = Color::rgb8(1, 2, 3);
    radii.buttonCorner = eKorvaneCornerRadius::square;
    EXPECT_TRUE(call("AAECAwQFBgcICQoLDA0ODw=="));
    EXPECT_EQ(config.colors, colors);
    EXPECT_EQ(config.cornerRadii, radii);
    EXPECT_EQ(config.wearableName, "Ring");
    EXPECT_TRUE(device.console->has("SDK initialize success"));
    EXPECT_TRUE(device.console->has("Note: failed deletePciTokenAndTimeoutInKeychain()"));
    for (const std::string bad :
         {"AAECAwQFBgcICQoLDA0ODw", "AAEC\nAwQFBgcICQoLDA0ODw==", "AAEC*wQFBgcICQoLDA0ODw=="}) {
        device.console->clear();
        EXPECT_FALSE(call(bad, "https://other.example"));
        EXPECT_TRUE(device.console->has("pre-shared key base64 decode failed."));
        EXPECT_EQ(config.preSharedKeyBase64Encoded, bad);
        EXPECT_EQ(config.preSharedKeyByteArray.size(), 16u);
        EXPECT_EQ(config.preSharedKeyByteArray[15], 15);
        EXPECT_EQ(config.apiUrl, "https://cards.example");
        EXPECT_TRUE(config.isSdkInited);
    }
    EXPECT_TRUE(call(""));
    EXPECT_TRUE(config.preSharedKeyByteArray.empty());
}

TEST_F(Initialize, DropsOneSlashAtTheEndOfTheUrl) {
    for (const auto& [given, stored] :
         {std::pair{"https://a//", "https://a/"}, {"https://a", "https://a"}, {"/", ""}}) {
        call("", given);
        EXPECT_EQ(config.apiUrl, stored);
    }
}

TEST_F(Initialize, WithBiometricsBringsTheTokenBackOnAMatch) {
    auto& items = device.secureItemStore->items();
    items[{"KorvanePCISDKService", "KorvaneSDKPCIToken"}] = "kept";
    items[{"KorvanePCISDKService", "KorvaneSDKPCITokenBioTimeout"}] = "300.0";
    EXPECT_TRUE(call("", "", true));
    EXPECT_TRUE(device.biometricContext->reasons().empty()) << "there is no reader";
    device.biometricContext->setAvailable(true);
    for (const bool match : {false, true}) {
        EXPECT_TRUE(call("", "", true));
        EXPECT_EQ(config.currentPciToken, "");
        device.biometricContext->answer(match);
        device.mainQueue->runAll();
        EXPECT_EQ(device.console->count("evaluate policy 'success' is false"), 1u);
    }
    EXPECT_EQ(config.currentPciToken, "kept");
    EXPECT_TRUE(config.timerPciExpired);
    EXPECT_TRUE(config.pciTimer.isArmed());
    EXPECT_EQ(items.size(), 2u);
    EXPECT_TRUE(call("", "", false));
    EXPECT_TRUE(items.empty());
}

TEST(Notifications, ReachTheObserversThatAreThere) {
    NotificationCenter& center = NotificationCenter::defaultCenter();
    std::string heard;
    auto second = center.observe("n", [&](const NotificationUserInfo&) { heard += "2"; });
    auto first = center.observe("n", [&](const NotificationUserInfo&) {
        heard += "1";
        second.reset();
    });
    for (const char* const name : {"n", "n", "other"}) center.post(name, {});
    EXPECT_EQ(heard, "211");
}

}  // namespace
}  // namespace korvane
