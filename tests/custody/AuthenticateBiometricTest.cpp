// SPDX-License-Identifier: Apache-2.0
#include "custody/AuthenticateBiometric.h"

#include <gtest/gtest.h>

#include <optional>

#include "platform/fakes/FakePorts.h"
#include "sdk/SdkConfig.h"

namespace korvane {
namespace {

using Lines = std::vector<std::string>;
using Outcome = AuthenticateBiometric::Outcome;

class Custody : public testing::Test {
  protected:
    Custody() { device.biometricContext->setAvailable(true); }

    std::string& kept(const std::string& account) {
        return device.secureItemStore->items()[{"KorvanePCISDKService", account}];
    }
    void keep(const std::string& token, const std::string& timeout) {
        kept("KorvaneSDKPCIToken") = token;
        kept("KorvaneSDKPCITokenBioTimeout") = timeout;
    }
    Lines linesOf(const std::function<bool()>& call, bool expected) {
        device.console->clear();
        EXPECT_EQ(call(), expected);
        return device.console->lines();
    }
    std::optional<Outcome> gate(bool match) {
        std::optional<Outcome> outcome;
        const auto check =
            AuthenticateBiometric::runGate(config, [&](Outcome reported) { outcome = reported; });
        EXPECT_TRUE(check);
        EXPECT_TRUE(device.biometricContext->answer(match));
        device.mainQueue->runAll();
        return outcome;
    }

    FakePorts device;
    SdkConfig& config = SdkConfig::sharedInstance();
};

TEST_F(Custody, SaveGoesOnWithTheTimeoutWhenTheTokenCouldNotBeWritten) {
    EXPECT_EQ(linesOf([&] { return AuthenticateBiometric::savePciTokenAndTimeoutToKeychain(config); }, false),
              (Lines{"savePciTokenToKeychain - currentPciToken is blank. Returning..."}));
    EXPECT_TRUE(device.secureItemStore->items().empty());

    config.currentPciToken = "token";
    config.decBiometricsAuthenticationTimer = "60.0";
    device.secureItemStore->failNext({-25308});
    EXPECT_EQ(linesOf([&] { return AuthenticateBiometric::savePciTokenAndTimeoutToKeychain(config); }, false),
              (Lines{"Error KeychainCommunicator.set pci token",
                     "Success writing pci token Bio Timemout to keychain"}));
    // The second write fails: the first stays as it is.
    device.secureItemStore->failNext({0, 0, 0, -25293});
    EXPECT_EQ(linesOf([&] { return AuthenticateBiometric::savePciTokenAndTimeoutToKeychain(config); }, false),
              (Lines{"Success writing pci token to keychain",
                     "Error KeychainCommunicator.set pci token Bio Timeout"}));
    EXPECT_EQ(kept("KorvaneSDKPCIToken"), "token");

    config.currentPciToken = "\xFF";
    config.decBiometricsAuthenticationTimer = "\xFF";
    EXPECT_EQ(linesOf([&] { return AuthenticateBiometric::savePciTokenAndTimeoutToKeychain(config); }, false),
              (Lines{"Error currentPciToken.data(using: .utf8)",
                     "Error bioTimeout.data(using: .utf8) Bio Timeout"}));
}

TEST_F(Custody, LoadsWhatIsThereAndTellsWhatIsNot) {
    EXPECT_EQ(linesOf([&] { return AuthenticateBiometric::loadPciToken(config); }, false),
              (Lines{"dataPCITokenKeychain is nil"}));
    EXPECT_EQ(linesOf([&] { return AuthenticateBiometric::loadBiometricsTimeout(config); }, false),
              (Lines{"dataPCITokenBioTimeoutKeychain is nil"}));
    keep("token", "\xC3(");
    EXPECT_EQ(linesOf([&] { return AuthenticateBiometric::loadPciToken(config); }, true),
              (Lines{"stringPCITokenFromKeychain: token",
                     "Setting SdkConfg.sharedInstance.currentPciToken with stringPCITokenFromKeychain",
                     "SdkConfig.sharedInstance.currentPciToken is now = token"}));
    EXPECT_EQ(linesOf([&] { return AuthenticateBiometric::loadBiometricsTimeout(config); }, false),
              (Lines{"Error getting string from dataPCITokenBioTimeoutFromKeychain"}));
    device.secureItemStore->failNext({-25291});
    EXPECT_EQ(linesOf([&] { return AuthenticateBiometric::loadPciToken(config); }, false),
              (Lines{"KeychainCommunicator.get pci token failed"}));
    keep("", "");
    EXPECT_TRUE(AuthenticateBiometric::loadPciToken(config));
    EXPECT_EQ(config.currentPciToken, "");

    AuthenticateBiometric::reloadAtInitialize(config);  // an empty one is none, and none can be out of date
    EXPECT_TRUE(device.biometricContext->answer(true));
    device.mainQueue->runAll();
    EXPECT_FALSE(config.timerPciExpired);
    EXPECT_FALSE(config.pciTimer.isArmed());
}

TEST_F(Custody, DeletesBothItemsWhateverBecomesOfTheFirst) {
    EXPECT_EQ(linesOf(AuthenticateBiometric::deletePciTokenAndTimeoutInKeychain, false),
              (Lines{"Error KeychainCommunicator.delete pci token",
                     "Error KeychainCommunicator.delete pci token Bio Timeout"}));
    keep("token", "60.0");
    device.secureItemStore->failNext({-25308});
    EXPECT_FALSE(AuthenticateBiometric::deletePciTokenAndTimeoutInKeychain());
    EXPECT_EQ(device.secureItemStore->items().size(), 1u);
    kept("KorvaneSDKPCITokenBioTimeout") = "60.0";
    EXPECT_EQ(linesOf(AuthenticateBiometric::deletePciTokenAndTimeoutInKeychain, true),
              (Lines{"Success deleting pci token to keychain",
                     "Success deleting pci token Bio Timemout in keychain"}));
}

TEST_F(Custody, GateBringsTheTokenBackAndStartsTheTimer) {
    keep("token", "120.0");
    EXPECT_EQ(gate(true), Outcome::authenticated);
    EXPECT_EQ(config.currentPciToken, "token");
    EXPECT_TRUE(config.pciTimer.isArmed());
    EXPECT_EQ(device.biometricContext->reasons(), (Lines{"enrollment.enableFaceID.reason"}));

    // The token is replaced although the timeout is missing (deliberate).
    device.secureItemStore->items().clear();
    kept("KorvaneSDKPCIToken") = "other";
    EXPECT_EQ(gate(true), Outcome::noStoredToken);
    EXPECT_EQ(config.currentPciToken, "other");
    EXPECT_TRUE(device.console->has("read pci token or bio timeout from keychain failed."));
    EXPECT_EQ(gate(false), Outcome::notAuthenticated);

    device.biometricContext->setAvailable(false);
    EXPECT_FALSE(AuthenticateBiometric::runGate(config, [](Outcome) { FAIL(); }));
}

}  // namespace
}  // namespace korvane
