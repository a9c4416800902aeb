// SPDX-License-Identifier: Apache-2.0
#include "operations/Operations.h"
#include "tests/support/ServiceFixture.h"
#include "tests/support/StoredToken.h"

namespace korvane {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// What the operations make of the fields of a reply.
class Replies : public ServiceFixture {
  protected:
    KorvaneRetStruct run(Handle (*operation)(StatePtr, OperationCompletion), Fields fields,
                         const std::string& word = "Success") {
        fields.emplace_back("encryptedResult", word);
        willAnswer({ok(fields)});
        KorvaneRetStruct record;
        const Handle underWay = operation(state, [&](KorvaneRetStruct done) { record = std::move(done); });
        settle();
        return record;
    }
    KorvaneRetStruct status(const std::string& code, const std::string& type) {
        return run(doGetCardStatus, {{"encryptedCardStatus", code}, {"encryptedCardType", type}});
    }
    KorvaneRetStruct submit(const std::string& token, const std::string& timeout) {
        return run(doPciTokenSubmission, {{"encryptedPciToken", token},
                                          {"encryptedPciTokenExpiration", "soon"},
                                          {"encryptedBiometricsAuthenticationTimer", timeout}});
    }
    /// The lines of these values in this order.
    std::string lines(const Fields& values) const {
        std::string text;
        for (const auto& [name, value] : values)
            text += "|theEnc" + name + ": " + encipher(value) + "|dec" + name + ": " + value;
        return text;
    }
};

TEST_F(Replies, CardImageStoresAndPrintsEveryValueInOrderBehindFixedMasks) {
    const std::string disclosures =
        R"({"Other":[],"CardDisclosures":[{"Language":"English","CardDisclosure":"x"}]})";
    const Fields values{{"CardImage", "aW1n"},
                        {"CardDisclosures", disclosures},
                        {"Pan", "5555550000079197123"},
                        {"Cvv", "8642"},
                        {"ExpiryDate", "12/31"},
                        {"FirstName", "Inés"},
                        {"MiddleName", ""},
                        {"LastName", "Núñez"},
                        {"CardNetwork", "visa"}};
    Fields reply;  // in another order
    for (const auto& [name, value] : values) reply.emplace(reply.begin(), "encrypted" + name, value);
    const KorvaneRetStruct record = run(doCardImage, reply, "SUCCESS");
    EXPECT_FALSE(record.error);
    EXPECT_THAT(printed(), HasSubstr("|decResult: SUCCESS" + lines(values) + "|KorvaneRetStruct("));
    EXPECT_EQ(state->decPan + state->decMaskedPan + state->decCvv + state->decMaskedCvv + state->decLastName,
              "5555550000079197123################8642###Núñez");
    EXPECT_EQ(state->decodedDisclosuresStruct->CardDisclosures->at(0).CardDisclosure, "x");

    // What is missing is empty, and the rest goes on, without an error.
    const KorvaneRetStruct told =
        run(doCardImage, {{"encryptedCardDisclosures", "{"}, {"encryptedCvv", "864"}});
    EXPECT_FALSE(told.error);
    EXPECT_EQ(told.errorMsg, "disclosure decode failed");
    EXPECT_FALSE(state->decodedDisclosuresStruct);
    EXPECT_EQ(state->decPan + state->decCardImage + state->decCvv + state->decCardNetwork, "864");
}

TEST_F(Replies, CardStatusStoresTheCodeAsItIsAndARecognisedType) {
    const std::pair<std::string, eKorvaneCardType> cases[] = {{"PHYSICAL", eKorvaneCardType::physical},
                                                              {"virtual", eKorvaneCardType::virtual_},
                                                              {"Wearable", eKorvaneCardType::wearable},
                                                              {"paywallet", eKorvaneCardType::paywallet}};
    for (const auto& [text, type] : cases) {
        EXPECT_FALSE(status("a1", text).error);
        EXPECT_EQ(state->decCardStatus, "a1");
        EXPECT_EQ(state->currentCardType, type);
        EXPECT_THAT(printed(),
                    HasSubstr("|decCardType: " + text + "|SdkConfig.sharedInstance.currentCardType = "));
    }
    // An unknown type: the line says physical, the type stays.
    EXPECT_FALSE(status("P2", " physical").error);
    EXPECT_TRUE(device.console->has("Unknown encoded card type, defaulting to .physical"));
    // A missing field is a failure that keeps what came before.
    EXPECT_EQ(run(doGetCardStatus, {{"encryptedCardType", "virtual"}}).errorMsg, "Encrypted card status nil");
    EXPECT_EQ(state->decCardStatus, "P2");
    const KorvaneRetStruct record = run(doGetCardStatus, {{"encryptedCardStatus", "BT"}});
    EXPECT_TRUE(record.error);
    EXPECT_EQ(record.errorMsg + state->decCardStatus, "Encrypted card type nilBT");
    EXPECT_EQ(state->currentCardType, eKorvaneCardType::paywallet);
}

TEST_F(Replies, TokenRequestStoresTheSmsTokenWhateverTheResultSays) {
    EXPECT_FALSE(run(doPciTokenRequest, {{"encryptedPciSmsToken", "sms"}}, "Failure: IV is expired").error);
    EXPECT_THAT(printed(), HasSubstr(lines({{"PciSmsToken", "sms"}}) + "|"));
    const KorvaneRetStruct record = run(doPciTokenRequest, {}, "Failure: Invalid offsetId");
    EXPECT_TRUE(record.error && record.errorMsg.empty());
    EXPECT_EQ(ivsSupplied, 0);
    EXPECT_EQ(state->decryptedPciSmsToken, "sms");
}

TEST_F(Replies, TokenSubmissionStoresTheTokenInMemory) {
    const std::pair<std::string, std::string> timeouts[] = {
        {"30", "60.0"},  {"abc", "60.0"},  {"-5", "60.0"},     {"3e2", "300.0"},
        {"nan", "60.0"}, {"90.5", "90.5"}, {"1e5", "100000.0"}};
    for (const auto& [text, kept] : timeouts) {
        EXPECT_FALSE(submit("pci-2", text).error);
        EXPECT_EQ(config.decBiometricsAuthenticationTimer, kept) << text;
    }
    EXPECT_EQ(config.currentPciToken + config.decPciTokenExpiration, "pci-2soon");
    EXPECT_TRUE(device.secureItemStore->items().empty());
    EXPECT_EQ(device.timers->pending(), 0u);
    EXPECT_THAT(printed(), HasSubstr(lines({{"PciToken", "pci-2"}, {"PciTokenExpiration", "soon"}})));
    // One that is refused leaves the token alone.
    const std::string wrong = "Failure: Incorrect SMS verification code";
    EXPECT_EQ(run(doPciTokenSubmission, {{"encryptedPciToken", "x"}}, wrong).errorMsg, wrong);
    const KorvaneRetStruct record = run(doPciTokenSubmission, {});
    EXPECT_TRUE(record.error && record.errorMsg.empty());
    EXPECT_EQ(config.currentPciToken, "pci-2");
}

TEST_F(Replies, WithBiometricsTheTokenIsKeptAndItsTimerRuns) {
    config.useBiometrics = true;
    const auto& items = device.secureItemStore->items();
    // A save that fails starts no timer, yet the token is there. Without a timeout nothing is saved.
    device.secureItemStore->failNext({secureItemNotAvailable});
    EXPECT_FALSE(submit("pci-1", "90").error);
    EXPECT_EQ(config.currentPciToken, "pci-1");
    EXPECT_FALSE(run(doPciTokenSubmission, {{"encryptedPciToken", "pci-2"}}).error);
    EXPECT_FALSE(items.contains(storedItem("KorvaneSDKPCIToken")));
    EXPECT_EQ(device.timers->pending(), 0u);

    EXPECT_FALSE(submit("pci-3", "90").error);
    EXPECT_THAT(sent(2), HasSubstr(" UseBiometrics=true "));
    EXPECT_EQ(items.at(storedItem("KorvaneSDKPCIToken")), "pci-3");
    EXPECT_EQ(items.at(storedItem("KorvaneSDKPCITokenBioTimeout")), "90.0");
    device.timers->advance(std::chrono::seconds{91});
    settle();
    EXPECT_EQ(config.currentPciToken, "");
}

}  // namespace
}  // namespace korvane
