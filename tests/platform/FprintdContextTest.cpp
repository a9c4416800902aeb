// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/FprintdContext.h"

#include <gio/gio.h>
#include <gmock/gmock.h>
#include <signal.h>

#include "platform/linux/GLibMainQueue.h"
#include "tests/platform/BiometricContextContract.h"
#include "tests/platform/support/Daemons.h"
#include "tests/platform/support/ScriptedPrompt.h"

namespace korvane::testing {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

struct ReaderDriver {
    explicit ReaderDriver(bool enrolled = true, std::chrono::milliseconds timeout = 60s) {
        if (enrolled) reader.enrol();
        context = std::make_shared<FprintdContext>(queue, prompt,
                                                   FprintdContextOptions{reader.bus.address(), timeout});
    }

    template <class Condition>
    void runUntil(Condition condition) {
        const auto until = std::chrono::steady_clock::now() + 20s;
        while (!condition()) {
            ASSERT_LT(std::chrono::steady_clock::now(), until);
            if (!g_main_context_iteration(nullptr, FALSE)) std::this_thread::sleep_for(1ms);
        }
    }
    void settle() {
        runUntil([this] { return !reader.armed(); });
    }
    /// Touches the reader, three times where that is what a failure takes.
    void answer(bool match) {
        for (int touch = 0; touch < (match ? 1 : 3); ++touch) send(match ? "SCAN right" : "SCAN wrong");
    }
    /// Has the reader do this while it waits for a finger.
    void send(const char* line) {
        runUntil([this] { return reader.armed(); });
        reader.send(line);
        runUntil(
            [this, told = prompt->told.size()] { return prompt->told.size() > told || !reader.armed(); });
    }
    /// True when nobody has claimed the reader.
    bool free() {
        try {
            g_variant_unref(reader.device("Claim", g_variant_new("(s)", "")));
        } catch (const std::exception&) {
            return false;
        }
        g_variant_unref(reader.device("Release", nullptr));
        return true;
    }
    /// Starts a check, and waits until the reader is armed.
    std::unique_ptr<BiometricEvaluation> arm() {
        auto check = context->evaluate("reason", [this](bool success) { replies.push_back(success); });
        runUntil([this] { return reader.armed(); });
        return check;
    }
    void waitForReply() {
        runUntil([this] { return !replies.empty(); });
    }

    VirtualReader reader;
    std::shared_ptr<GLibMainQueue> queue = std::make_shared<GLibMainQueue>();
    std::shared_ptr<ScriptedPrompt> prompt = std::make_shared<ScriptedPrompt>(queue);
    std::shared_ptr<BiometricContext> context;
    std::vector<bool> replies;
};
INSTANTIATE_TYPED_TEST_SUITE_P(Fprintd, BiometricContextContract, ReaderDriver);

TEST(Fprintd, CanEvaluateOnlyWithAnEnrolledFinger) {
    ReaderDriver driver(false);
    EXPECT_FALSE(driver.context->canEvaluate());
    driver.reader.enrol();
    driver.runUntil([&] { return driver.context->canEvaluate(); });
    driver.reader.kill();
    driver.runUntil([&] { return !driver.context->canEvaluate(); });
    auto check = driver.context->evaluate("reason", [&](bool success) { driver.replies.push_back(success); });
    driver.waitForReply();
    EXPECT_THAT(driver.replies, ElementsAre(false));
    EXPECT_FALSE(driver.prompt->shown());
    driver.reader.start();
    driver.runUntil([&] { return driver.context->canEvaluate(); });
}

TEST(Fprintd, TellsWhatWentWrongUntilAFingerMatches) {
    ReaderDriver driver;
    const auto check = driver.arm();
    EXPECT_THAT(driver.prompt->reasons, ElementsAre("reason"));
    for (const char* line : {"RETRY 1", "SCAN wrong", "RETRY 3", "SCAN wrong", "SCAN right"})
        driver.send(line);
    driver.waitForReply();
    EXPECT_THAT(driver.replies, ElementsAre(true));
    EXPECT_THAT(driver.prompt->told, ElementsAre("sdk.biometrics.retry", "sdk.biometrics.nomatch",
                                                 "sdk.biometrics.retry", "sdk.biometrics.nomatch"));
    EXPECT_FALSE(driver.prompt->shown());
    driver.runUntil([&] { return driver.free(); });
}

TEST(Fprintd, IsArmedOnlyWhileThePromptIsInSight) {
    ReaderDriver driver;
    driver.prompt->comesIntoView = false;
    const auto check =
        driver.context->evaluate("reason", [&](bool success) { driver.replies.push_back(success); });
    for (int turn = 0; turn < 3; ++turn) {
        EXPECT_FALSE(driver.reader.armed());
        driver.prompt->setVisible(true);
        driver.runUntil([&] { return driver.reader.armed(); });
        driver.prompt->setVisible(false);
        driver.settle();
    }
    driver.prompt->setVisible(true);
    driver.answer(true);
    driver.waitForReply();
    EXPECT_THAT(driver.replies, ElementsAre(true));
}

TEST(Fprintd, ADeclinedPromptEndsTheCheckWhateverTheReaderSays) {
    ReaderDriver driver;
    const auto check = driver.arm();
    driver.reader.send("SCAN right");
    driver.prompt->cancel();
    EXPECT_TRUE(driver.replies.empty());
    driver.waitForReply();
    driver.settle();
    EXPECT_THAT(driver.replies, ElementsAre(false));
    EXPECT_FALSE(driver.prompt->shown());
}

TEST(Fprintd, ADaemonThatExitedIsStartedAgainToProbeAndToCheck) {
    ReaderDriver driver;
    driver.reader.kill();
    driver.reader.startOnDemand();
    FprintdContext context(driver.queue, driver.prompt, {driver.reader.bus.address()});
    driver.runUntil([&] { return context.canEvaluate(); });
    const auto check = driver.arm();
    driver.answer(true);
    driver.waitForReply();
    EXPECT_THAT(driver.replies, ElementsAre(true));
}

TEST(Fprintd, AMatchThatAnotherProgramReportsIsNone) {
    ReaderDriver driver;
    const auto check = driver.arm();
    EXPECT_TRUE(g_dbus_connection_emit_signal(driver.reader.bus.connection(), nullptr, VirtualReader::path,
                                              VirtualReader::interface, "VerifyStatus",
                                              g_variant_new("(sb)", "verify-match", TRUE), nullptr));
    driver.answer(false);
    driver.waitForReply();
    EXPECT_THAT(driver.replies, ElementsAre(false));
}

TEST(Fprintd, ALostDaemonAnErrorAndAnUnpluggedReaderAreFalse) {
    ReaderDriver driver;
    auto check = driver.arm();
    driver.reader.kill();
    driver.waitForReply();
    driver.reader.start();
    for (const char* line : {"ERROR 0", "UNPLUG"}) {
        check = driver.arm();
        driver.reader.send(line);
        driver.runUntil([&, before = driver.replies.size()] { return driver.replies.size() > before; });
    }
    EXPECT_THAT(driver.replies, ElementsAre(false, false, false));
}

TEST(Fprintd, AReaderInUseIsWaitedFor) {
    ReaderDriver driver;
    g_variant_unref(driver.reader.device("Claim", g_variant_new("(s)", "")));
    const auto check =
        driver.context->evaluate("reason", [&](bool success) { driver.replies.push_back(success); });
    const auto until = std::chrono::steady_clock::now() + 300ms;
    driver.runUntil([&] { return std::chrono::steady_clock::now() > until; });
    EXPECT_TRUE(driver.replies.empty());
    g_variant_unref(driver.reader.device("Release", nullptr));
    driver.answer(true);
    driver.waitForReply();
    EXPECT_THAT(driver.replies, ElementsAre(true));
}

TEST(Fprintd, ACheckEndsWhenItsTimeIsUpAlsoWithADaemonThatHangs) {
    ReaderDriver driver(true, 1s);
    auto check = driver.arm();
    driver.waitForReply();
    driver.settle();
    EXPECT_TRUE(driver.context->canEvaluate());
    driver.reader.signal(SIGSTOP);
    const auto begin = std::chrono::steady_clock::now();
    check = driver.context->evaluate("reason", [&](bool success) { driver.replies.push_back(success); });
    driver.runUntil([&] { return driver.replies.size() == 2; });
    EXPECT_THAT(driver.replies, ElementsAre(false, false));
    driver.context.reset();
    EXPECT_THAT(std::chrono::steady_clock::now() - begin, ::testing::Lt(4s));
    driver.reader.signal(SIGCONT);
}

TEST(Fprintd, ADestroyedContextDropsItsChecksAndLetsGoOfTheReader) {
    ReaderDriver driver;
    const auto check = driver.arm();
    driver.context.reset();
    EXPECT_FALSE(driver.prompt->shown());
    driver.settle();
    EXPECT_TRUE(driver.replies.empty());
    EXPECT_TRUE(driver.free());
}

}  // namespace
}  // namespace korvane::testing
