// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <korvane/CloseNotification.h>
#include <korvane/Contrast.h>
#include <korvane/Initialize.h>

#include <set>
#include <string>

#include "platform/fakes/FakePorts.h"
#include "sdk/SdkConfig.h"
#include "tests/support/StoredToken.h"

namespace korvane {
namespace {

class Initialize : public testing::Test {
  protected:
    bool call(const std::string& key, const std::string& url = "https://cards.example") {
        return initialize(
            key, url, [](const IvReply&) {}, false, colors, radii, "Ring", std::nullopt);
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
    device.mainQueue->runAll();
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
    for (const auto& [given, stored] :
         {std::pair{"https://a//", "https://a/"}, {"https://a", "https://a"}, {"/", ""}}) {
        EXPECT_TRUE(call("", given));
        EXPECT_EQ(config.apiUrl, stored);
    }
    EXPECT_TRUE(config.preSharedKeyByteArray.empty());
}

TEST_F(Initialize, AnotherKeyOrServiceLogOutAndUninstallingEndTheSession) {
    const std::string key = "AAECAwQFBgcICQoLDA0ODw==", otherKey = "DwECAwQFBgcICQoLDA0ODw==";
    auto& items = device.secureItemStore->items();
    const std::pair<const char*, std::function<void()>> ends[] = {
        {"key", [&] { call(otherKey); }},        {"url", [&] { call(key, "https://other.example"); }},
        {"log-out", [] { logOut(); }},           {"install", [] { const FakePorts others; }},
        {"uninstall", [] { uninstallPorts(); }},
    };
    for (const auto& [name, end] : ends) {
        SCOPED_TRACE(name);
        call(key);
        config.ivIdStr = "iv";
        config.ivByteArray.assign(16, 7);
        config.currentBearerToken = config.currentPciToken = config.lastJsonResponseStr = "token";
        config.decBiometricsAuthenticationTimer = "60";
        config.pciTimer.start();
        call(key);
        call("not base64", "https://other.example");
        EXPECT_EQ(config.currentBearerToken, "token") << "the same service, the same session";
        EXPECT_TRUE(config.pciTimer.isArmed());
        device.mainQueue->runAll();
        items[storedItem("KorvaneSDKPCIToken")] = "token";
        const auto* const iv = config.ivByteArray.data();
        end();
        device.mainQueue->runAll();
        EXPECT_EQ(iv[0], 0) << "wiped where it stood";
        EXPECT_EQ(config.ivIdStr + config.currentBearerToken + config.currentPciToken +
                      config.lastJsonResponseStr + config.decBiometricsAuthenticationTimer,
                  "");
        EXPECT_TRUE(config.ivByteArray.empty());
        EXPECT_FALSE(config.pciTimer.isArmed());
        EXPECT_EQ(items.empty(), !std::string(name).ends_with("install"));
    }
}

TEST(PortsDeathTest, AMissingOneIsRefusedAndWithoutAnyTheProgramEndsWithAReason) {
    EXPECT_FALSE(installPorts({}));
    EXPECT_FALSE(portsInstalled());
    EXPECT_DEATH(ports(), "call installPorts before anything else");
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

class TokenTimer : public testing::Test {
  protected:
    TokenTimer() { config.currentPciToken = "token"; }

    void start(const std::string& interval) {
        config.decBiometricsAuthenticationTimer = interval;
        config.pciTimer.start();
    }
    bool clearedAfter(double seconds) {
        device.timers->advance(std::chrono::duration<double>(seconds));
        device.mainQueue->runAll();
        return config.currentPciToken.empty();
    }

    FakePorts device;
    SdkConfig& config = SdkConfig::sharedInstance();
};

TEST_F(TokenTimer, ClearsTheTokenWhenItsTimeIsUpSinceTheLastStart) {
    start("10");
    EXPECT_FALSE(clearedAfter(6));
    start("1.5");
    EXPECT_FALSE(clearedAfter(1.4));
    start("1.5");
    EXPECT_FALSE(clearedAfter(1.4));
    EXPECT_FALSE(config.timerPciExpired);
    const char* const stood = config.currentPciToken.data();
    EXPECT_TRUE(clearedAfter(0.2));
    EXPECT_EQ(std::string(stood, 5), std::string(5, '\0')) << "wiped where it stood";
    EXPECT_TRUE(config.timerPciExpired);
    EXPECT_TRUE(device.console->has("Timer hit - doing SdkConfig.sharedInstance.currentPciToken = blank"));
    EXPECT_TRUE(device.console->has("handlePCITokenClearTimer - setting SdkConfig timerPciExpired to true"));
}

TEST_F(TokenTimer, OfAnEarlierTokenLeavesANewerOneAlone) {
    start("1");
    device.timers->advance(std::chrono::seconds(1));  // its clearing waits in the main queue
    config.currentPciToken = "newer";
    start("60");
    device.mainQueue->runAll();
    EXPECT_EQ(config.currentPciToken, "newer");
}

TEST_F(TokenTimer, ReadsItsIntervalStrictlyAndStopsWithoutOne) {
    for (const std::string none : {"", " 5", "\t5", "5 ", "5s", "abc", "0", "0.0"}) {
        device.console->clear();
        start("5");
        start(none);
        EXPECT_FALSE(config.pciTimer.isArmed()) << none;
        EXPECT_TRUE(device.console->has("Note: timer interval is 0"));
    }
    start("3e2");
    EXPECT_FALSE(clearedAfter(299));
    EXPECT_TRUE(clearedAfter(1));
    config.currentPciToken = "token";
    start("-4");
    EXPECT_TRUE(clearedAfter(0));
}

TEST(Contrast, FollowsTheFormulaThroughTranslucentColours) {
    const Color white{1, 1, 1}, black{};
    EXPECT_NEAR(contrastRatio(black, white), 21, 1e-9);
    EXPECT_NEAR(contrastRatio(Color::rgb8(118, 118, 118), white), 4.54, 0.005);
    EXPECT_NEAR(contrastRatio({0, 0, 0, 0.5}, white), 3.98, 0.005);
    EXPECT_NEAR(contrastRatio(white, {0, 0, 0, 0.5}), 3.98, 0.005) << "a translucent ground lies on white";
    EXPECT_NEAR(contrastRatio({-1, 2, 2}, {0, 1, 1}), 1, 1e-9) << "a host's arithmetic may stray outside";
}

TEST(Contrast, TheAuditLooksAtEveryColourAndListsWhatAPaletteLacks) {
    const Color c{0.5, 0.5, 0.5};
    const KorvaneColors grey{c, c, c, c, c, c, c, c, c, c, c, c, c, c, c};
    std::set<std::string> seen;
    for (const auto& finding : auditContrast(grey)) seen.insert({finding.foreground, finding.background});
    EXPECT_EQ(seen.size(), 15u);

    std::string told;
    for (const auto& [foreground, background, ratio, required] : auditContrast({}))
        told += std::string{foreground} + "/" + background + (required == 4.5 ? " text, " : " shape, ");
    EXPECT_EQ(told, "error/background text, onError/error text, success/background shape, ");
    EXPECT_TRUE(auditContrast(KorvaneColors::dark()).empty());
}

#ifndef NDEBUG
TEST(Contrast, DebugBuildsAdviseOnTheConsole) {
    const FakePorts device;
    ASSERT_TRUE(initialize("", "", [](const IvReply&) {}, false, {}, {}));
    EXPECT_TRUE(device.console->has("contrast advice: error on background is 3.86:1, below 4.5:1"));
}
#endif

}  // namespace
}  // namespace korvane
