// SPDX-License-Identifier: Apache-2.0
#include "operations/Operations.h"
#include "tests/support/ServiceFixture.h"

namespace korvane {
namespace {

using testing::HasSubstr;

class PciToken : public ServiceFixture {
  protected:
    KorvaneRetStruct run(Operation (*operation)(OperationCompletion), const Fields& reply) {
        willAnswer({ok(reply)});
        KorvaneRetStruct record;
        operation([&](KorvaneRetStruct done) { record = std::move(done); });
        settle();
        return record;
    }
    KorvaneRetStruct submit(Fields fields) {
        fields.emplace_back("encryptedResult", "Success");
        return run(doPciTokenSubmission, fields);
    }
    std::string stored(const std::string& account) const {
        return device.secureItemStore->copy("KorvanePCISDKService", account).value.value_or("(none)");
    }
};

TEST_F(PciToken, ARequestStoresTheSmsTokenWhateverTheResultSays) {
    EXPECT_FALSE(run(doPciTokenRequest,
                     {{"encryptedPciSmsToken", "sms"}, {"encryptedResult", "Failure: IV is expired"}})
                     .error);
    EXPECT_EQ(config.decryptedPciSmsToken, "sms");
    EXPECT_THAT(printed(), HasSubstr("|theEncPciSmsToken: " + encipher("sms") + "|decPciSmsToken: sms|"));
    const KorvaneRetStruct record =
        run(doPciTokenRequest, {{"encryptedResult", "Failure: Invalid offsetId"}});
    EXPECT_TRUE(record.error);
    EXPECT_EQ(record.errorMsg, "");
    EXPECT_FALSE(record.jsonResponseStr.empty());
    EXPECT_EQ(ivsSupplied, 0);
    EXPECT_EQ(config.decryptedPciSmsToken, "sms");
}

TEST_F(PciToken, ASubmissionStoresTheTokenInMemory) {
    EXPECT_FALSE(submit({{"encryptedPciToken", "pci-2"},
                         {"encryptedPciTokenExpiration", "soon"},
                         {"encryptedBiometricsAuthenticationTimer", "300"}})
                     .error);
    EXPECT_EQ(config.currentPciToken, "pci-2");
    EXPECT_EQ(config.decPciTokenExpiration, "soon");
    EXPECT_TRUE(device.secureItemStore->items().empty());
    EXPECT_EQ(device.timers->pending(), 0u);
    EXPECT_THAT(printed(),
                HasSubstr("|decResult: Success|theEncPciToken: " + encipher("pci-2") +
                          "|decPciToken: pci-2|theEncPciTokenExpiration: " + encipher("soon") +
                          "|decPciTokenExpiration: soon|theEncBiometricsAuthenticationTimer: " +
                          encipher("300") + "|decBiometricsAuthenticationTimer: 300|KorvaneRetStruct("));
    const std::pair<std::string, std::string> timeouts[] = {
        {"30", "60.0"},   {"abc", "60.0"},  {"", "60.0"},   {"-5", "60.0"},
        {"90.5", "90.5"}, {"3e2", "300.0"}, {"nan", "60.0"}};
    for (const auto& [text, kept] : timeouts) {
        submit({{"encryptedPciToken", "t"}, {"encryptedBiometricsAuthenticationTimer", text}});
        EXPECT_EQ(config.decBiometricsAuthenticationTimer, kept) << text;
    }
}

TEST_F(PciToken, WithBiometricsTheTokenIsKeptAndItsTimerRuns) {
    config.useBiometrics = true;
    // A save that fails starts no timer, yet the token is there. Without a timeout nothing is saved.
    device.secureItemStore->failNext({secureItemNotAvailable});
    EXPECT_FALSE(
        submit({{"encryptedPciToken", "pci-1"}, {"encryptedBiometricsAuthenticationTimer", "90"}}).error);
    EXPECT_EQ(config.currentPciToken, "pci-1");
    EXPECT_FALSE(submit({{"encryptedPciToken", "pci-2"}}).error);
    EXPECT_EQ(stored("KorvaneSDKPCIToken"), "(none)");
    EXPECT_EQ(device.timers->pending(), 0u);

    printed();
    EXPECT_FALSE(
        submit({{"encryptedPciToken", "pci-3"}, {"encryptedBiometricsAuthenticationTimer", "90"}}).error);
    EXPECT_THAT(sent(2), HasSubstr(" UseBiometrics=true "));
    EXPECT_EQ(stored("KorvaneSDKPCIToken") + " " + stored("KorvaneSDKPCITokenBioTimeout"), "pci-3 90.0");
    const std::string lines = printed();
    EXPECT_THAT(lines,
                HasSubstr("|==================|AuthenticateBiometric.savePciTokenAndTimeoutToKeychain()|"));
    EXPECT_THAT(lines, HasSubstr("|startPCITokenClearTimer()|KorvaneRetStruct("));
    device.timers->advance(std::chrono::seconds{91});
    settle();
    EXPECT_EQ(config.currentPciToken, "");
}

TEST_F(PciToken, ASubmissionThatIsRefusedLeavesTheTokenAlone) {
    const std::string wrong = "Failure: Incorrect SMS verification code";
    EXPECT_EQ(run(doPciTokenSubmission, {{"encryptedResult", wrong}, {"encryptedPciToken", "x"}}).errorMsg,
              wrong);
    EXPECT_TRUE(device.console->has("doPciTokenSubmission - got 200 if here..."));
    const KorvaneRetStruct record = submit({});
    EXPECT_TRUE(record.error);
    EXPECT_EQ(record.errorMsg, "");
    EXPECT_EQ(config.currentPciToken, "pci-token");
}

}  // namespace
}  // namespace korvane
