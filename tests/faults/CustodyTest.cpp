// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <korvane/Journey.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <optional>
#include <thread>

#include "platform/fakes/FakeBiometricPrompt.h"
#include "platform/linux/FprintdContext.h"
#include "platform/linux/GLibTimers.h"
#include "platform/linux/SecretServiceStore.h"
#include "tests/platform/support/Devices.h"
#include "tests/support/ScriptedService.h"

// The PCI token's custody on a running keyring and a running finger daemon.
namespace korvane::testing {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// Time that this thread waited for something: not what it worked, nor what it waited for a processor.
class Watchdog {
  public:
    void watch(const std::function<void()>& turn) {
        const auto begin = Clock::now();
        const auto busy = busyTime();
        turn();
        longest = std::max(longest, Clock::now() - begin - (busyTime() - busy));
    }
    std::chrono::nanoseconds longest{};

  private:
    static std::chrono::nanoseconds busyTime() {
        std::ifstream file("/proc/self/task/" + std::to_string(syscall(SYS_gettid)) + "/schedstat");
        std::int64_t worked = 0, waitedForAProcessor = 0;
        if (!(file >> worked >> waitedForAProcessor)) throw std::runtime_error("no schedstat");
        return std::chrono::nanoseconds(worked + waitedForAProcessor);
    }
};

TEST(Watchdog, SeesAWaitAndNoWork) {
    Watchdog watchdog;
    watchdog.watch([] {
        for (const auto end = Clock::now() + 50ms; Clock::now() < end;) continue;
    });
    EXPECT_LT(watchdog.longest, 16ms);
    watchdog.watch([] { std::this_thread::sleep_for(20ms); });
    EXPECT_GT(watchdog.longest, 16ms);
}

class RealCustody : public ::testing::Test {
  protected:
    RealCustody() { devices.ask("start_keyring"); }

    /// A card service with real custody; the reader only if it is wanted, since that takes its time.
    void begin(bool withReader = true) {
        if (withReader) {
            devices.ask("start_reader");
            devices.ask("enrol");
        }
        Ports ports = korvane::ports();
        ports.timers = std::make_shared<GLibTimers>();
        ports.backgroundQueue = nullptr;
        ports.secureItemStore = std::make_shared<SecretServiceStore>();
        ports.biometricContext = std::make_shared<FprintdContext>(
            ports.mainQueue, prompt, FprintdContextOptions{devices.ask("address SYSTEM"), 60s});
        installPorts(std::move(ports));
    }
    ~RealCustody() override {
        journeys.clear();
        uninstallPorts();
    }
    void start(bool useBiometrics) {
        watchdog.watch([&] {
            initialize(service.keyText, "https://cards.example",
                       [this](const IvReply& reply) { reply("iv", service.ivText); }, useBiometrics, {}, {});
        });
    }
    Journey& open(JourneyKind kind = JourneyKind::setPIN) {
        journeys.push_back(std::make_unique<Journey>(kind, "card"));
        watchdog.watch([&] { journeys.back()->appear(); });
        return *journeys.back();
    }

    /// Runs the main loop, each turn under the eyes of the watchdog.
    template <class Condition>
    bool until(Condition condition, std::chrono::milliseconds limit = 30s) {
        for (const auto end = Clock::now() + limit; !condition();) {
            if (Clock::now() > end) return false;
            bool idle = true;
            watchdog.watch([&] { idle = !service.device.mainQueue->runOne(); });
            watchdog.watch([&] { idle = !g_main_context_iteration(nullptr, FALSE) && idle; });
            if (idle) std::this_thread::sleep_for(1ms);
        }
        return true;
    }
    bool reaches(const Journey& journey, const std::string& view) {
        return until([&] { return journey.screen().view == view && !journey.screen().spinner; });
    }
    bool logs(std::string_view line) {
        return until([&] { return service.device.console->has(line); });
    }
    /// From the SMS step to the token.
    void verify(Journey& journey) {
        service.next("pciTokenSubmission",
                     service.ok({{"encryptedResult", "Success"},
                                 {"encryptedPciToken", token},
                                 {"encryptedBiometricsAuthenticationTimer", "100000"}}));
        ASSERT_TRUE(reaches(journey, "SMSExplainView"));
        watchdog.watch([&] { journey.perform("sdk.sms.explain.button"); });
        ASSERT_TRUE(reaches(journey, "EnterSMSCodeView"));
        watchdog.watch([&] { journey.replaceText("123456"); });
        ASSERT_TRUE(reaches(journey, "EnterCardPINView"));
    }
    std::string items() { return devices.ask("count KorvanePCISDKService"); }

    const std::string token = "a token that is long enough to stand on the heap";
    ScriptedService service;
    Devices devices;
    const std::shared_ptr<FakeBiometricPrompt> prompt =
        std::make_shared<FakeBiometricPrompt>(service.device.mainQueue);
    std::vector<std::unique_ptr<Journey>> journeys;
    Watchdog watchdog;
};

TEST_F(RealCustody, NobodyWhoNeverChoseBiometricsIsAskedToUnlock) {
    begin(false);
    start(true);
    service.next("getCardStatus", service.result("Failure: Invalid Token"));
    verify(open());
    EXPECT_EQ(items(), "2");
    journeys.clear();
    devices.ask("lock");
    devices.ask("watch_prompts");
    start(false);
    EXPECT_TRUE(logs("Note: failed deletePciTokenAndTimeoutInKeychain()"));
    logOut();
    EXPECT_TRUE(reaches(open(), "EnterCardPINView"));
    EXPECT_EQ(devices.ask("prompts"), "0");
    devices.ask("unlock");
    open();  // the component finds it open, and does what was left over
    EXPECT_TRUE(until([&] { return items() == "0"; }));
}

TEST_F(RealCustody, LogOutAndAnotherKeyLeaveNothingThatOpensACard) {
    begin();
    const std::string key = service.keyText, otherKey = "DwECAwQFBgcICQoLDA0ODw==";
    const std::function<void()> ends[] = {
        [] { logOut(); },
        [&] { initialize(otherKey, "https://cards.example", [](const auto&) {}, true, {}, {}); }};
    for (const auto& end : ends) {
        start(true);
        ASSERT_TRUE(until([&] { return prompt->shown(); }));
        Journey& journey = open();
        prompt->cancel();
        verify(journey);
        EXPECT_EQ(items(), "2");
        EXPECT_TRUE(service.config.pciTimer.isArmed());
        end();
        EXPECT_EQ(service.config.currentPciToken + service.config.currentBearerToken, "");
        EXPECT_FALSE(service.config.pciTimer.isArmed());
        EXPECT_TRUE(until([&] { return items() == "0"; }));
    }
}

TEST_F(RealCustody, ATokenThatCouldNotBeKeptServesItsJourneyAndNotTheNext) {
    begin();
    start(true);
    ASSERT_TRUE(until([&] { return prompt->shown(); }));
    Journey& first = open();
    prompt->cancel();
    ASSERT_TRUE(reaches(first, "SMSExplainView"));
    devices.ask("kill_keyring");
    verify(first);
    EXPECT_TRUE(service.device.console->has("Error KeychainCommunicator.set pci token"));
    EXPECT_EQ(service.config.currentPciToken, token);
    Journey& second = open();
    EXPECT_TRUE(until([&] { return prompt->shown(); }));
    EXPECT_EQ(second.screen().view, "SetPIN");
}

TEST_F(RealCustody, AJourneyTakesOverTheCheckThatInitializeStartedAlsoWhenTheReaderGoes) {
    begin();
    start(true);
    ASSERT_TRUE(until([&] { return devices.is("armed"); }));
    Journey& journey = open();
    const std::string failed = "evaluate policy 'success' is false";
    service.device.console->clear();
    devices.ask("kill_reader");
    EXPECT_TRUE(reaches(journey, "SMSExplainView"));
    EXPECT_EQ(service.device.console->count(failed), 1u);
    EXPECT_EQ(prompt->reasons().size(), 1u);
    verify(journey);
    EXPECT_EQ(service.config.decBiometricsAuthenticationTimer, "100000.0");
    service.config.endSession();  // as if the app were started anew

    devices.ask("restart_reader");
    service.device.console->clear();
    start(true);
    ASSERT_TRUE(until([&] { return devices.is("armed"); }));
    devices.ask("send SCAN right");
    EXPECT_TRUE(reaches(open(), "EnterCardPINView"));
    EXPECT_EQ(prompt->reasons().size(), 2u);
    EXPECT_EQ(service.device.console->count("stringPCITokenFromKeychain: " + token), 1u);
    EXPECT_TRUE(service.config.pciTimer.isArmed());
}

/// What befalls a daemon before a visit.
class MainThread : public RealCustody, public ::testing::WithParamInterface<const char*> {
  protected:
    /// Whatever the reader does, the person declines.
    void pass(const Journey& journey) {
        EXPECT_TRUE(until([&] { return prompt->shown() || !journey.screen().spinner; }));
        if (prompt->shown()) prompt->cancel();
        EXPECT_TRUE(until([&] { return !journey.screen().spinner; }));
    }
    void visit() {
        service.device.console->clear();
        start(true);
        Journey& first = open();
        pass(first);
        if (first.screen().view == "SMSExplainView") verify(first);
        pass(open(JourneyKind::getCardImage));
        watchdog.watch([] { logOut(); });
        start(false);
        EXPECT_TRUE(logs("Note: failed deletePciTokenAndTimeoutInKeychain()"));
    }
};

INSTANTIATE_TEST_SUITE_P(With, MainThread,
                         ::testing::Values("stop keyring", "kill keyring", "slow keyring", "lock",
                                           "stop fprintd", "kill fprintd", "slow fprintd"),
                         [](const auto& which) {
                             std::string name = which.param;
                             std::replace(name.begin(), name.end(), ' ', '_');
                             return name;
                         });

TEST_P(MainThread, NeverWaitsForADaemon) {
    begin();
    devices.ask(GetParam());
    // On a busy machine a turn may wait for a lock that another thread holds. A wait for a daemon comes each
    // time.
    std::chrono::nanoseconds shortest = 1h;
    for (int visits = 0; visits < 3 && shortest >= 16ms; ++visits) {
        watchdog.longest = {};
        visit();
        shortest = std::min(shortest, watchdog.longest);
    }
    EXPECT_LT(shortest, 16ms);
}

}  // namespace
}  // namespace korvane::testing
