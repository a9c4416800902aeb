// SPDX-License-Identifier: Apache-2.0
#include "operations/Operations.h"
#include "tests/support/ServiceFixture.h"

namespace korvane {
namespace {

using testing::HasSubstr;

class CardStatus : public ServiceFixture {
  protected:
    KorvaneRetStruct run(const Fields& reply) {
        willAnswer({ok(reply)});
        KorvaneRetStruct record;
        doGetCardStatus([&](KorvaneRetStruct done) { record = std::move(done); });
        settle();
        return record;
    }
    KorvaneRetStruct run(const std::string& status, const std::string& type) {
        return run(
            {{"encryptedResult", "success"}, {"encryptedCardStatus", status}, {"encryptedCardType", type}});
    }
};

TEST_F(CardStatus, StoresTheCodeAsItIsAndARecognisedType) {
    const std::tuple<std::string, eKorvaneCardType, std::string> cases[] = {
        {"PHYSICAL", eKorvaneCardType::physical, ".physical"},
        {"virtual", eKorvaneCardType::virtual_, ".virtual"},
        {"Wearable", eKorvaneCardType::wearable, ".wearable"},
        {"paywallet", eKorvaneCardType::paywallet, ".paywallet"}};
    for (const auto& [text, type, name] : cases) {
        EXPECT_FALSE(run("a1", text).error);
        EXPECT_EQ(config.decCardStatus, "a1");
        EXPECT_EQ(config.currentCardType, type);
        EXPECT_THAT(printed(),
                    HasSubstr("|theEncCardStatus: " + encipher("a1") + "|decCardStatus: a1|theEncCardType: " +
                              encipher(text) + "|decCardType: " + text +
                              "|SdkConfig.sharedInstance.currentCardType = " + name + "|KorvaneRetStruct("));
    }
    // An unknown type: the line says physical, the type stays.
    EXPECT_FALSE(run("P2", " physical").error);
    EXPECT_EQ(config.decCardStatus, "P2");
    EXPECT_EQ(config.currentCardType, eKorvaneCardType::paywallet);
    EXPECT_TRUE(device.console->has("Unknown encoded card type, defaulting to .physical"));
}

TEST_F(CardStatus, AMissingFieldIsAFailureThatKeepsWhatCameBefore) {
    config.decCardStatus = "old";
    config.currentCardType = eKorvaneCardType::wearable;
    EXPECT_EQ(run({{"encryptedResult", "Success"}, {"encryptedCardType", "physical"}}).errorMsg,
              "Encrypted card status nil");
    EXPECT_EQ(config.decCardStatus, "old");
    const KorvaneRetStruct record = run({{"encryptedResult", "Success"}, {"encryptedCardStatus", "BT"}});
    EXPECT_TRUE(record.error);
    EXPECT_EQ(record.errorMsg, "Encrypted card type nil");
    EXPECT_FALSE(record.jsonResponseStr.empty());
    EXPECT_EQ(
        run({{"encryptedResult", "No"}, {"encryptedCardStatus", "A1"}, {"encryptedCardType", "virtual"}})
            .errorMsg,
        "No");
    EXPECT_EQ(config.decCardStatus, "BT");
    EXPECT_EQ(config.currentCardType, eKorvaneCardType::wearable);
}

}  // namespace
}  // namespace korvane
