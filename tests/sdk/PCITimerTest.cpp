// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "platform/fakes/FakePorts.h"
#include "sdk/SdkConfig.h"

namespace korvane {
namespace {

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
    EXPECT_TRUE(clearedAfter(0.2));
    EXPECT_TRUE(config.timerPciExpired);
    EXPECT_FALSE(config.pciTimer.isArmed());
    EXPECT_EQ(device.console->lines(),
              (std::vector<std::string>{
                  "=========", "Timer hit - doing SdkConfig.sharedInstance.currentPciToken = blank",
                  "=========", "=========",
                  "handlePCITokenClearTimer - setting SdkConfig timerPciExpired to true", "========="}));
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

}  // namespace
}  // namespace korvane
