// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <korvane/CloseNotification.h>
#include <korvane/Initialize.h>
#include <korvane/Version.h>

#include <string>

#include "platform/fakes/FakePorts.h"
#include "sdk/SdkConfig.h"

namespace korvane {
namespace {

class Initialize : public testing::Test {
  protected:
    bool call(const std::string& key, const std::string& url = "https://cards.example",
              bool biometrics = false) {
        return initialize(
            key, url, [](const IvReply&) {}, biometrics, colors, radii, "Ring", std::nullopt);
    }

    FakePorts device;
    SdkConfig& config = SdkConfig::sharedInstance();
    KorvaneColors colors;
    KorvaneCornerRadii radii;
};

TEST_F(Initialize, StoresWhatTheHostHandsOver) {
    colors.primary = Color::rgb8(1, 2, 3);
    radii.buttonCorner = eKorvaneCornerRadius::square;
    EXPECT_TRUE(call("AAECAwQFBgcICQoLDA0ODw=="));
    EXPECT_EQ(config.preSharedKeyByteArray.size(), 16u);
    EXPECT_EQ(config.preSharedKeyByteArray[15], 15);
    EXPECT_EQ(config.colors, colors);
    EXPECT_EQ(config.cornerRadii, radii);
    EXPECT_EQ(config.wearableName, "Ring");
    EXPECT_TRUE(config.isSdkInited);
    EXPECT_TRUE(device.console->has("SDK initialize success"));
    EXPECT_TRUE(device.console->has("Note: failed deletePciTokenAndTimeoutInKeychain()"));
}

TEST_F(Initialize, RefusesAKeyThatIsNotStrictBase64) {
    EXPECT_TRUE(call("AAECAwQFBgcICQoLDA0ODw=="));
    for (const std::string bad :
         {"AAECAwQFBgcICQoLDA0ODw", "AAEC\nAwQFBgcICQoLDA0ODw==", "AAEC*wQFBgcICQoLDA0ODw=="}) {
        device.console->clear();
        EXPECT_FALSE(call(bad, "https://other.example"));
        EXPECT_TRUE(device.console->has("pre-shared key base64 decode failed."));
        EXPECT_EQ(config.preSharedKeyBase64Encoded, bad);
        EXPECT_EQ(config.preSharedKeyByteArray.size(), 16u);
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
    EXPECT_EQ(items.size(), 2u);
    device.biometricContext->setAvailable(true);
    EXPECT_TRUE(call("", "", true));
    EXPECT_EQ(config.currentPciToken, "");
    device.biometricContext->answer(true);
    device.mainQueue->runAll();
    EXPECT_EQ(config.currentPciToken, "kept");
    EXPECT_TRUE(config.timerPciExpired);
    EXPECT_TRUE(config.pciTimer.isArmed());

    EXPECT_TRUE(call("", "", true));
    device.biometricContext->answer(false);
    device.mainQueue->runAll();
    EXPECT_TRUE(device.console->has("evaluate policy 'success' is false"));
    EXPECT_TRUE(call("", "", false));
    EXPECT_TRUE(items.empty());
}

TEST(SharedState, StartsWithItsDefaults) {
    const FakePorts device;
    SdkConfig& config = SdkConfig::sharedInstance();
    EXPECT_TRUE(config.useJSONbodyForAPIRequests);
    EXPECT_FALSE(config.isSdkInited || config.useBiometrics || config.gotInitialIV || config.setPinOnly);
    bool answered = false;
    config.ivCallback([&](const auto& ivId, const auto& iv) { answered = !ivId && !iv; });
    EXPECT_TRUE(answered);
    EXPECT_EQ(KorvaneiOSSDKVersionNumber, 1.0);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(KorvaneiOSSDKVersionString)),
              "@(#)PROGRAM:KorvaneiOSSDK  PROJECT:KorvaneiOSSDK-1\n");
}

TEST(Notifications, ReachTheObserversThatAreThere) {
    NotificationCenter& center = NotificationCenter::defaultCenter();
    std::string heard;
    auto second = center.observe("n", [&](const NotificationUserInfo&) { heard += "2"; });
    auto first = center.observe("n", [&](const NotificationUserInfo&) {
        heard += "1";
        second.reset();
    });
    center.post("n", {});
    center.post("n", {});
    center.post("other", {});
    EXPECT_EQ(heard, "211");
}

}  // namespace
}  // namespace korvane
