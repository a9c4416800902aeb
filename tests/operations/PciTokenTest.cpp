// SPDX-License-Identifier: Apache-2.0
#include "operations/Operations.h"
#include "tests/support/ServiceFixture.h"

namespace korvane {
namespace {

class PciToken : public ServiceFixture {
  protected:
    KorvaneRetStruct run(Operation (*operation)(OperationCompletion), std::vector<UrlReply> replies) {
        willAnswer(std::move(replies));
        KorvaneRetStruct record;
        operation([&](KorvaneRetStruct done) { record = std::move(done); });
        settle();
        return record;
    }
    KorvaneRetStruct submit(const Fields& further) {
        Fields fields{{"encryptedResult", "Success"}};
        fields.insert(fields.end(), further.begin(), further.end());
        return run(doPciTokenSubmission, {ok(fields)});
    }
    std::string stored(const std::string& account) const {
        const auto& items = device.secureItemStore->items();
        const auto item = items.find({"KorvanePCISDKService", account});
        return item == items.end() ? "(none)" : item->second;
    }
};

TEST_F(PciToken, ARequestStoresTheSmsTokenWhateverTheResultSays) {
    EXPECT_FALSE(run(doPciTokenRequest,
                     {ok({{"encryptedPciSmsToken", "sms"}, {"encryptedResult", "Failure: IV is expired"}})})
                     .error);
    EXPECT_EQ(config.decryptedPciSmsToken, "sms");
    EXPECT_TRUE(device.console->has("theEncPciSmsToken: " + encipher("sms")));
    EXPECT_TRUE(device.console->has("decPciSmsToken: sms"));

    const KorvaneRetStruct record =
        run(doPciTokenRequest, {ok({{"encryptedResult", "Failure: Invalid offsetId"}})});
    EXPECT_TRUE(record.error);
    EXPECT_EQ(record.errorMsg, "");
    EXPECT_FALSE(record.jsonResponseStr.empty());
    EXPECT_EQ(ivsSupplied, 0);
    EXPECT_EQ(config.decryptedPciSmsToken, "sms");
}

TEST_F(PciToken, ASubmissionSendsTheCodeAndStoresTheTokenInMemory) {
    config.decryptedPciSmsToken = "sms";
    config.twoFactorCode = "123456";
    config.currentPciToken.clear();
    EXPECT_FALSE(submit({{"encryptedPciToken", "pci-2"},
                         {"encryptedPciTokenExpiration", "soon"},
                         {"encryptedBiometricsAuthenticationTimer", "300"}})
                     .error);
    EXPECT_EQ(decipher(sent(0)["encryptedPciSmsToken"]), "sms");
    EXPECT_EQ(decipher(sent(0)["encryptedTwoFactorCode"]), "123456");
    EXPECT_EQ(decipher(sent(0)["encryptedUseBiometrics"]), "false");
    EXPECT_EQ(config.currentPciToken, "pci-2");
    EXPECT_EQ(config.decPciTokenExpiration, "soon");
    EXPECT_EQ(config.decBiometricsAuthenticationTimer, "300.0");
    EXPECT_TRUE(device.secureItemStore->items().empty());
    EXPECT_EQ(device.timers->pending(), 0u);
    auto printed = lines();
    printed.erase(printed.begin(), std::find(printed.begin(), printed.end(), "decResult: Success") + 1);
    printed.pop_back();  // the record
    EXPECT_EQ(printed, (std::vector<std::string>{"theEncPciToken: " + encipher("pci-2"), "decPciToken: pci-2",
                                                 "theEncPciTokenExpiration: " + encipher("soon"),
                                                 "decPciTokenExpiration: soon",
                                                 "theEncBiometricsAuthenticationTimer: " + encipher("300"),
                                                 "decBiometricsAuthenticationTimer: 300"}));
}

TEST_F(PciToken, TheTimeoutIsAtLeastAMinute) {
    const std::pair<std::string, std::string> cases[] = {{"30", "60.0"},   {"abc", "60.0"}, {"", "60.0"},
                                                         {"-5", "60.0"},   {"60", "60.0"},  {"90.5", "90.5"},
                                                         {"3e2", "300.0"}, {"nan", "60.0"}, {"90 s", "60.0"}};
    for (const auto& [text, stored] : cases) {
        submit({{"encryptedPciToken", "t"}, {"encryptedBiometricsAuthenticationTimer", text}});
        EXPECT_EQ(config.decBiometricsAuthenticationTimer, stored) << text;
    }
}

TEST_F(PciToken, WithBiometricsTheTokenIsKeptAndItsTimerRuns) {
    config.useBiometrics = true;
    // A save that fails starts no timer, yet the token is there.
    device.secureItemStore->failNext({secureItemNotAvailable});
    EXPECT_FALSE(
        submit({{"encryptedPciToken", "pci-1"}, {"encryptedBiometricsAuthenticationTimer", "90"}}).error);
    EXPECT_EQ(config.currentPciToken, "pci-1");
    EXPECT_EQ(device.timers->pending(), 0u);
    // Without a timeout nothing is saved.
    submit({{"encryptedPciToken", "pci-2"}});
    EXPECT_EQ(stored("KorvaneSDKPCIToken"), "(none)");

    lines();
    EXPECT_FALSE(
        submit({{"encryptedPciToken", "pci-3"}, {"encryptedBiometricsAuthenticationTimer", "90"}}).error);
    EXPECT_EQ(decipher(sent(2)["encryptedUseBiometrics"]), "true");
    EXPECT_EQ(stored("KorvaneSDKPCIToken"), "pci-3");
    EXPECT_EQ(stored("KorvaneSDKPCITokenBioTimeout"), "90.0");
    const auto printed = lines();
    const auto save =
        std::find(printed.begin(), printed.end(), "AuthenticateBiometric.savePciTokenAndTimeoutToKeychain()");
    ASSERT_NE(save, printed.end());
    EXPECT_EQ(*(save - 1), "==================");
    EXPECT_EQ(*(printed.end() - 2), "startPCITokenClearTimer()");
    device.timers->advance(std::chrono::seconds{91});
    settle();
    EXPECT_EQ(config.currentPciToken, "");
    EXPECT_TRUE(config.timerPciExpired);
}

TEST_F(PciToken, ASubmissionThatIsRefusedLeavesTheTokenAlone) {
    const KorvaneRetStruct wrong = run(
        doPciTokenSubmission,
        {ok({{"encryptedResult", "Failure: Incorrect SMS verification code"}, {"encryptedPciToken", "x"}})});
    EXPECT_EQ(wrong.errorMsg, "Failure: Incorrect SMS verification code");
    EXPECT_TRUE(device.console->has("doPciTokenSubmission - got 200 if here..."));
    const KorvaneRetStruct without = submit({});
    EXPECT_TRUE(without.error);
    EXPECT_EQ(without.errorMsg, "");
    EXPECT_EQ(config.currentPciToken, "pci-token");
}

}  // namespace
}  // namespace korvane
