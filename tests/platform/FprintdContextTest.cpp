// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/FprintdContext.h"

#include <gmock/gmock.h>
#include <korvane/contracts/BiometricContextContract.h>

#include <chrono>
#include <thread>

#include "platform/fakes/FakeBiometricPrompt.h"
#include "platform/linux/GLibMainQueue.h"
#include "tests/platform/support/Devices.h"

namespace korvane::testing {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

struct ReaderDriver {
    explicit ReaderDriver(std::chrono::milliseconds timeout = 60s) {
        devices.ask("start_reader");
        devices.ask("enrol");
        context = std::make_shared<FprintdContext>(queue, prompt, FprintdContextOptions{bus, timeout});
    }

    template <class Condition>
    void runUntil(Condition condition) {
        for (const auto until = std::chrono::steady_clock::now() + 20s; !condition();) {
            ASSERT_LT(std::chrono::steady_clock::now(), until);
            if (!g_main_context_iteration(nullptr, FALSE)) std::this_thread::sleep_for(1ms);
        }
    }
    void waitUntilArmed(bool armed = true) {
        runUntil([&] { return devices.is("armed") == armed; });
    }
    void settle() {
        waitUntilArmed(false);
        EXPECT_FALSE(prompt->shown());
    }
    void has(Happening happening) {
        waitUntilArmed();
        if (happening == Happening::retryThenMatch) scan("RETRY 1");
        if (happening == Happening::lostReader) return void(devices.ask("kill_reader"));
        if (happening == Happening::noMatch) return scan("SCAN wrong", 3);
        if (happening != Happening::cancel) return scan("SCAN right");
        devices.ask("send SCAN right");
        prompt->cancel();  // while the reader says yes
    }
    void forgetFingers() { devices.ask("forget_fingers"); }

    /// Has the reader do this while it waits for a finger.
    void scan(const std::string& line, int times = 1) {
        for (; times > 0; --times) {
            waitUntilArmed();
            const std::size_t told = prompt->told().size();
            devices.ask("send " + line);
            runUntil([&] { return prompt->told().size() > told || !devices.is("armed"); });
        }
    }
    std::unique_ptr<BiometricEvaluation> start() {
        return context->evaluate("reason", [this](bool success) { replies.push_back(success); });
    }
    /// Starts a check, and waits until the reader is armed.
    std::unique_ptr<BiometricEvaluation> arm() {
        auto check = start();
        waitUntilArmed();
        return check;
    }
    /// The one check that was started ends so.
    void expectAnswer(bool matched) {
        scan(matched ? "SCAN right" : "SCAN wrong", matched ? 1 : 3);
        waitForReplies();
        EXPECT_THAT(replies, ElementsAre(matched));
    }
    void waitForReplies(std::size_t count = 1) {
        runUntil([&] { return replies.size() == count; });
    }

    Devices devices;
    const std::string bus = devices.ask("address SYSTEM");
    std::shared_ptr<GLibMainQueue> queue = std::make_shared<GLibMainQueue>();
    std::shared_ptr<FakeBiometricPrompt> prompt = std::make_shared<FakeBiometricPrompt>(queue);
    std::shared_ptr<BiometricContext> context;
    std::vector<bool> replies;
};
INSTANTIATE_TYPED_TEST_SUITE_P(Fprintd, BiometricContextContract, ReaderDriver);

TEST(Fprintd, TellsWhatWentWrongUntilAFingerMatchesAndLetsGoOfTheReader) {
    ReaderDriver driver;
    const auto check = driver.arm();
    EXPECT_THAT(driver.prompt->reasons(), ElementsAre("reason"));
    for (const char* line : {"RETRY 1", "SCAN wrong", "RETRY 3", "SCAN wrong"}) driver.scan(line);
    driver.expectAnswer(true);
    EXPECT_THAT(driver.prompt->told(), ElementsAre("sdk.biometrics.retry", "sdk.biometrics.nomatch",
                                                   "sdk.biometrics.retry", "sdk.biometrics.nomatch"));
    driver.runUntil([&] { return driver.devices.is("claim"); });
}

TEST(Fprintd, IsArmedOnlyWhileThePromptIsInSight) {
    ReaderDriver driver;
    driver.prompt->setComesIntoView(false);
    const auto check = driver.start();
    for (int turn = 0; turn < 3; ++turn) {
        EXPECT_FALSE(driver.devices.is("armed"));
        driver.prompt->setVisible(true);
        driver.waitUntilArmed();
        driver.prompt->setVisible(false);
        driver.waitUntilArmed(false);
    }
    driver.prompt->setVisible(true);
    driver.expectAnswer(true);
}

TEST(Fprintd, ADaemonThatExitedIsStartedAgainToProbeAndToCheck) {
    ReaderDriver driver;
    driver.devices.ask("kill_reader");
    driver.devices.ask("start_reader_on_demand");
    FprintdContext context(driver.queue, driver.prompt, {driver.bus});
    driver.runUntil([&] { return context.canEvaluate(); });
    const auto check = driver.arm();
    driver.expectAnswer(true);
}

TEST(Fprintd, AMatchThatAnotherProgramReportsAnErrorAndAnUnpluggedReaderAreNone) {
    ReaderDriver driver;
    auto check = driver.arm();
    driver.devices.ask("pretend_match");
    driver.expectAnswer(false);
    for (const char* line : {"send ERROR 0", "send UNPLUG"}) {
        check = driver.arm();
        driver.devices.ask(line);
        driver.waitForReplies(driver.replies.size() + 1);
        EXPECT_FALSE(driver.replies.back());
    }
}

TEST(Fprintd, AReaderInUseIsWaitedForAndADestroyedContextLetsGoOfIt) {
    ReaderDriver driver;
    driver.devices.ask("claim");
    const auto check = driver.start();
    const auto until = std::chrono::steady_clock::now() + 300ms;
    driver.runUntil([&] { return std::chrono::steady_clock::now() > until; });
    EXPECT_TRUE(driver.replies.empty());
    driver.devices.ask("release");
    driver.waitUntilArmed();
    driver.context.reset();
    driver.settle();
    EXPECT_TRUE(driver.replies.empty());
    EXPECT_TRUE(driver.devices.is("claim"));
}

TEST(Fprintd, ACheckEndsWhenItsTimeIsUpAlsoWithADaemonThatHangs) {
    ReaderDriver driver(1s);
    auto check = driver.arm();
    driver.waitForReplies();
    driver.runUntil([&] { return driver.devices.is("claim"); });
    driver.devices.ask("release");
    check = driver.arm();
    driver.devices.ask("stop fprintd");
    driver.waitForReplies(2);
    EXPECT_THAT(driver.replies, ElementsAre(false, false));
    const auto begin = std::chrono::steady_clock::now();
    driver.context.reset();
    EXPECT_THAT(std::chrono::steady_clock::now() - begin, ::testing::Lt(4s));
}

}  // namespace
}  // namespace korvane::testing
