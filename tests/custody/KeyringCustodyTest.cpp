// SPDX-License-Identifier: Apache-2.0
// The two items in a real keyring that fails while they are written.
#include <gmock/gmock.h>

#include <chrono>
#include <functional>

#include "custody/AuthenticateBiometric.h"
#include "platform/fakes/FakePorts.h"
#include "platform/linux/SecretServiceStore.h"
#include "sdk/SdkConfig.h"
#include "tests/platform/support/Devices.h"

namespace korvane {
namespace {

using std::chrono_literals::operator""s;
using ::testing::ElementsAre;
using ::testing::Lt;

/// Keeps the lines, and does something at one of them.
class ActingConsole final : public Console {
  public:
    void line(std::string_view text) override {
        lines.emplace_back(text);
        if (text == at) act();
    }
    std::vector<std::string> lines;
    std::string at;
    std::function<void()> act;
};

class KeyringCustody : public ::testing::Test {
  protected:
    KeyringCustody() {
        Ports ports = korvane::ports();
        ports.console = console;
        ports.secureItemStore = std::make_shared<SecretServiceStore>();
        installPorts(ports);
        devices.ask("start_keyring");
        config.currentPciToken = "token";
        config.decBiometricsAuthenticationTimer = "300.0";
    }

    /// Saves twice: whole, and then with a fault between the two writes.
    void saveWithFault(const std::string& fault) {
        EXPECT_TRUE(AuthenticateBiometric::savePciTokenAndTimeoutToKeychain());
        config.currentPciToken = "newer token";
        config.decBiometricsAuthenticationTimer = "600.0";
        console->lines.clear();
        console->at = "Success writing pci token to keychain";
        console->act = [=, this] { devices.ask(fault); };
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_FALSE(AuthenticateBiometric::savePciTokenAndTimeoutToKeychain());
        EXPECT_THAT(console->lines, ElementsAre("Success writing pci token to keychain",
                                                "Error KeychainCommunicator.set pci token Bio Timeout"));
        console->lines.clear();
        EXPECT_FALSE(AuthenticateBiometric::loadPciToken());
        EXPECT_FALSE(AuthenticateBiometric::deletePciTokenAndTimeoutInKeychain());
        EXPECT_THAT(console->lines, ElementsAre("KeychainCommunicator.get pci token failed",
                                                "Error KeychainCommunicator.delete pci token",
                                                "Error KeychainCommunicator.delete pci token Bio Timeout"));
        EXPECT_THAT(std::chrono::steady_clock::now() - begin, Lt(8s));
        EXPECT_EQ(config.currentPciToken, "newer token");
    }
    void expectKept(const std::string& token, const std::string& timeout) {
        EXPECT_TRUE(AuthenticateBiometric::loadPciToken());
        EXPECT_TRUE(AuthenticateBiometric::loadBiometricsTimeout());
        EXPECT_EQ(config.currentPciToken, token);
        EXPECT_EQ(config.decBiometricsAuthenticationTimer, timeout);
    }

    testing::Devices devices;
    FakePorts device;
    std::shared_ptr<ActingConsole> console = std::make_shared<ActingConsole>();
    SdkConfig& config = SdkConfig::sharedInstance();
};

TEST_F(KeyringCustody, AKeyringThatDiesBetweenTheWritesKeepsTheFirst) {
    saveWithFault("kill_keyring");
    devices.ask("start_keyring");
    expectKept("newer token", "300.0");
}

TEST_F(KeyringCustody, AKeyringThatIsLockedBetweenTheWritesReadsAsFailure) {
    saveWithFault("lock");
}

TEST_F(KeyringCustody, AKeyringThatHangsBetweenTheWritesDoesNotHangTheJourney) {
    saveWithFault("stop keyring");
    devices.ask("go_on keyring");
    expectKept("newer token", "300.0");
}

}  // namespace
}  // namespace korvane
