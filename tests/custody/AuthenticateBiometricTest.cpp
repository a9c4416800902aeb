// SPDX-License-Identifier: Apache-2.0
#include "custody/AuthenticateBiometric.h"

#include <gtest/gtest.h>
#include <korvane/Initialize.h>

#include <optional>

#include "platform/fakes/FakePorts.h"
#include "sdk/SdkConfig.h"
#include "tests/support/StoredToken.h"

namespace korvane {
namespace {

using Lines = std::vector<std::string>;
using Outcome = AuthenticateBiometric::Outcome;
using namespace std::chrono_literals;

const Lines loaded{"stringPCITokenFromKeychain: token",
                   "Setting SdkConfg.sharedInstance.currentPciToken with stringPCITokenFromKeychain",
                   "SdkConfig.sharedInstance.currentPciToken is now = token",
                   "stringPCITokenBioTimeoutFromKeychain: 120.0",
                   "Setting SdkConfg.sharedInstance.decBiometricsAuthenticationTimer with "
                   "stringPCITokenBioTimeoutFromKeychain",
                   "SdkConfig.sharedInstance.decBiometricsAuthenticationTimer is now = 120.0"};
const Lines notDeleted{"Error KeychainCommunicator.delete pci token",
                       "Error KeychainCommunicator.delete pci token Bio Timeout"};

class Custody : public testing::Test {
  protected:
    Custody() {
        device.biometricContext->setAvailable(true);
        config.useBiometrics = true;
        config.currentPciToken.clear();
    }
    ~Custody() override { config.endSession(); }

    std::string& kept(const std::string& account) {
        return device.secureItemStore->items()[storedItem(account)];
    }
    void keep(const std::string& token, const std::string& timeout) {
        kept("KorvaneSDKPCIToken") = token;
        kept("KorvaneSDKPCITokenBioTimeout") = timeout;
    }
    std::size_t count() const { return device.secureItemStore->items().size(); }

    /// The lines that a call logs; it reports `expected`, once.
    Lines linesOf(bool expected, const std::function<void(std::function<void(bool)>)>& call) {
        device.console->clear();
        std::optional<bool> told;
        call([&](bool result) {
            EXPECT_FALSE(told);
            told = result;
        });
        device.mainQueue->runAll();
        EXPECT_EQ(told, expected);
        return device.console->lines();
    }
    Lines save(bool expected) {
        return linesOf(expected, [&](auto done) {
            AuthenticateBiometric::savePciTokenAndTimeoutToKeychain(config, done);
        });
    }
    Lines load(bool expected) {
        return linesOf(expected, [&](auto done) {
            AuthenticateBiometric::loadPciTokenAndTimeout(config, config.session, done);
        });
    }
    Lines erase(bool expected) {
        return linesOf(expected, [&](auto done) {
            AuthenticateBiometric::deletePciTokenAndTimeoutInKeychain(config, done);
        });
    }
    Handle gate(std::string& told) {
        constexpr const char* names[] = {"authenticated", "noStoredToken", "notAuthenticated",
                                         "cannotEvaluate"};
        auto handle = AuthenticateBiometric::runGate(
            config, [&told, names](Outcome outcome) { told += names[static_cast<int>(outcome)]; });
        device.mainQueue->runAll();
        return handle;
    }
    /// What a gate logs, whose check is answered so.
    Lines linesOfGate(const std::string& expected, bool match = true) {
        device.console->clear();
        std::string told;
        const auto handle = gate(told);
        device.biometricContext->answer(match);
        device.mainQueue->runAll();
        EXPECT_EQ(told, expected);
        return device.console->lines();
    }
    void start(bool useBiometrics) {
        initialize("", "https://cards.example", [](const auto&) {}, useBiometrics, {}, {});
        device.mainQueue->runAll();
        device.console->clear();
    }

    FakePorts device;
    SdkConfig& config = SdkConfig::sharedInstance();
};

TEST_F(Custody, SavesBothWhateverBecomesOfTheFirst) {
    EXPECT_EQ(save(false), (Lines{"savePciTokenToKeychain - currentPciToken is blank. Returning..."}));
    EXPECT_EQ(count(), 0u);

    config.currentPciToken = "token";
    config.decBiometricsAuthenticationTimer = "";  // an empty item is an item
    const Lines both{"Success writing pci token to keychain",
                     "Success writing pci token Bio Timemout to keychain"};
    EXPECT_EQ(save(true), both);
    config.decBiometricsAuthenticationTimer = "60.0";
    EXPECT_EQ(save(true), both);
    EXPECT_EQ(kept("KorvaneSDKPCIToken") + kept("KorvaneSDKPCITokenBioTimeout"), "token60.0");
    // Asked whether it is there, and updated.
    for (const std::deque<SecureItemStatus>& failing : {std::deque{-25308}, std::deque{0, -25308}}) {
        device.secureItemStore->failNext(failing);
        EXPECT_EQ(save(false), (Lines{"Error KeychainCommunicator.set pci token", both[1]}));
    }
    device.secureItemStore->failNext({0, 0, 0, -25293});
    EXPECT_EQ(save(false), (Lines{both[0], "Error KeychainCommunicator.set pci token Bio Timeout"}));

    config.currentPciToken = config.decBiometricsAuthenticationTimer = "\xFF";
    EXPECT_EQ(save(false), (Lines{"Error currentPciToken.data(using: .utf8)",
                                  "Error bioTimeout.data(using: .utf8) Bio Timeout"}));
    EXPECT_EQ(kept("KorvaneSDKPCIToken"), "token");
}

TEST_F(Custody, LoadsWhatIsThereAndTellsWhatIsNot) {
    EXPECT_EQ(load(false), (Lines{"dataPCITokenKeychain is nil"}));
    keep("\xC3(", "120.0");
    EXPECT_EQ(load(false), (Lines{"Error getting string from dataPCITokenFromKeychain"}));
    keep("token", "120.0");
    EXPECT_EQ(load(true), loaded);
    const std::pair<std::deque<SecureItemStatus>, const char*> failures[] = {
        {{-25291}, "KeychainCommunicator.get pci token failed"},
        {{0, -25291}, "KeychainCommunicator.get pci token Bio Timeout failed"},
        {{0, -25300}, "dataPCITokenBioTimeoutKeychain is nil"}};
    for (const auto& [failing, line] : failures) {
        device.secureItemStore->failNext(failing);
        EXPECT_EQ(load(false).back(), line);
    }
    keep("token", "\xC3(");
    EXPECT_EQ(load(false).back(), "Error getting string from dataPCITokenBioTimeoutFromKeychain");
    keep("", "");
    load(true);
    EXPECT_EQ(config.currentPciToken + config.decBiometricsAuthenticationTimer, "");
}

TEST_F(Custody, WhatWasToBeDeletedIsNotReadAndGoesWhenTheStoreIsOpenAgain) {
    EXPECT_EQ(erase(false), notDeleted);
    keep("token", "120.0");
    EXPECT_EQ(erase(true), (Lines{"Success deleting pci token to keychain",
                                  "Success deleting pci token Bio Timemout in keychain"}));
    constexpr auto locked = secureItemLocked;
    keep("token", "120.0");
    device.secureItemStore->failNext({locked, locked, locked, locked});
    EXPECT_EQ(erase(false), notDeleted);
    // It opens between the second attempt and the reading.
    device.secureItemStore->failNext({locked});
    EXPECT_EQ(load(false), (Lines{"KeychainCommunicator.get pci token failed"}));
    EXPECT_EQ(load(false), (Lines{"dataPCITokenKeychain is nil"}));
    EXPECT_EQ(count(), 0u);

    // A token that is saved afterwards is another one.
    device.secureItemStore->failNext({locked, locked, locked, locked});
    erase(false);
    config.currentPciToken = "token";
    config.decBiometricsAuthenticationTimer = "120.0";
    save(true);
    EXPECT_EQ(load(true), loaded);

    device.secureItemStore->failNext({locked, locked, locked, locked});
    erase(false);
    AuthenticateBiometric::deleteWhatIsDue(config);
    device.mainQueue->runAll();
    EXPECT_EQ(count(), 0u);
}

TEST_F(Custody, ItemsBelongToOneKeyAndService) {
    keep("token", "120.0");
    for (std::string* const other : {&config.apiUrl, &config.preSharedKeyBase64Encoded}) {
        if (other == &config.apiUrl) {
            *other += "/other";
        } else {
            config.preSharedKeyByteArray.push_back(7);
        }
        EXPECT_EQ(load(false), (Lines{"dataPCITokenKeychain is nil"}));
        EXPECT_EQ(erase(false), notDeleted);
    }
    EXPECT_EQ(count(), 2u);
    config.preSharedKeyByteArray.clear();
}

TEST_F(Custody, AStoreThatHangsIsGivenUpAndItsLateAnswerChangesNothing) {
    keep("token", "120.0");
    device.backgroundQueue->hold();
    std::string told;
    const auto note = [&](bool result) { told += result ? "yes " : "no "; };
    config.currentPciToken = "newer";
    AuthenticateBiometric::savePciTokenAndTimeoutToKeychain(config, note);
    AuthenticateBiometric::loadPciTokenAndTimeout(config, config.session, note);
    device.timers->advance(2900ms);
    EXPECT_EQ(told, "");
    device.timers->advance(100ms);
    EXPECT_EQ(told, "no no ");
    const Lines lines{"Error KeychainCommunicator.set pci token",
                      "Error KeychainCommunicator.set pci token Bio Timeout",
                      "KeychainCommunicator.get pci token failed"};
    EXPECT_EQ(device.console->lines(), lines);
    while (device.backgroundQueue->runOne()) device.mainQueue->runAll();
    EXPECT_EQ(told, "no no ");
    EXPECT_EQ(device.console->lines(), lines);
    EXPECT_EQ(config.currentPciToken, "newer");
}

TEST_F(Custody, GateBringsTheTokenBackAndStartsTheTimer) {
    keep("token", "120.0");
    EXPECT_EQ(linesOfGate("authenticated"), loaded);
    EXPECT_TRUE(config.pciTimer.isArmed());
    EXPECT_EQ(device.biometricContext->reasons(), (Lines{"enrollment.enableFaceID.reason"}));
    keep("", "");  // an empty token's timer starts too, and finds nothing to do
    EXPECT_EQ(linesOfGate("authenticated").back(), "Note: timer interval is 0");

    // The token is replaced although the timeout is missing (deliberate); the former one's timer goes.
    keep("token", "120.0");
    linesOfGate("authenticated");
    device.secureItemStore->items().clear();
    kept("KorvaneSDKPCIToken") = "other";
    EXPECT_EQ(linesOfGate("noStoredToken").back(), "read pci token or bio timeout from keychain failed.");
    EXPECT_EQ(config.currentPciToken, "other");
    EXPECT_FALSE(config.pciTimer.isArmed());
    EXPECT_EQ(linesOfGate("notAuthenticated", false), (Lines{"evaluate policy 'success' is false"}));

    device.biometricContext->setAvailable(false);
    EXPECT_EQ(linesOfGate("cannotEvaluate"), Lines{});
}

TEST_F(Custody, AJourneyJoinsTheCheckThatInitializeStarted) {
    for (const bool match : {true, false}) {
        SCOPED_TRACE(match);
        device.secureItemStore->items().clear();
        start(true);
        keep("token", "120.0");
        std::string first, second;
        auto one = gate(first);
        const auto other = gate(second);
        EXPECT_EQ(device.biometricContext->open(), 1u);
        device.biometricContext->setAvailable(false);  // the reader is gone, the finger has been shown
        device.biometricContext->answer(match);
        one.reset();
        device.mainQueue->runAll();
        EXPECT_EQ(first, "") << "its handle was released";
        EXPECT_EQ(second, match ? "authenticated" : "notAuthenticated");
        EXPECT_EQ(device.console->lines(), match ? loaded : Lines{"evaluate policy 'success' is false"});
        EXPECT_EQ(config.pciTimer.isArmed(), match);
        EXPECT_EQ(config.timerPciExpired, match);
        config.endSession();
        device.biometricContext->setAvailable(true);
    }
}

TEST_F(Custody, InitializesOwnCheckStartsNoTimerForAnEmptyTokenAndPrintsNoGatesLine) {
    start(true);
    device.biometricContext->answer(true);
    device.mainQueue->runAll();
    EXPECT_EQ(device.console->lines(), (Lines{"dataPCITokenKeychain is nil"}));
    keep("", "");
    start(true);
    device.biometricContext->answer(true);
    device.mainQueue->runAll();
    EXPECT_FALSE(config.timerPciExpired || config.pciTimer.isArmed());
}

TEST_F(Custody, ACheckEndsWithTheSessionAndReadsNothingOnceBiometricsAreOff) {
    const std::function<void()> ends[] = {[] { logOut(); }, [this] { start(false); }};
    for (const auto& end : ends) {
        start(true);
        keep("token", "120.0");
        EXPECT_TRUE(device.biometricContext->answer(true));  // on its way
        end();
        device.mainQueue->runAll();
        EXPECT_EQ(config.currentPciToken, "");
        EXPECT_EQ(device.biometricContext->open(), 0u);
    }
    config.useBiometrics = true;
    keep("token", "120.0");
    std::string told;
    const auto handle = gate(told);
    start(false);
    keep("token", "120.0");
    device.biometricContext->answer(true);
    device.mainQueue->runAll();
    EXPECT_EQ(told + config.currentPciToken, "cannotEvaluate");
}

}  // namespace
}  // namespace korvane
