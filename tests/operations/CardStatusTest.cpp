// SPDX-License-Identifier: Apache-2.0
#include "operations/Operations.h"
#include "tests/support/ServiceFixture.h"

namespace korvane {
namespace {

class CardStatus : public ServiceFixture {
  protected:
    KorvaneRetStruct run(const Fields& reply) {
        willAnswer({ok(reply)});
        KorvaneRetStruct record;
        doGetCardStatus([&](KorvaneRetStruct done) { record = std::move(done); });
        settle();
        return record;
    }
};

TEST_F(CardStatus, StoresTheCodeAsItIsAndARecognisedType) {
    const std::pair<std::string, eKorvaneCardType> cases[] = {{"PHYSICAL", eKorvaneCardType::physical},
                                                              {"virtual", eKorvaneCardType::virtual_},
                                                              {"Wearable", eKorvaneCardType::wearable},
                                                              {"paywallet", eKorvaneCardType::paywallet}};
    for (const auto& [text, type] : cases) {
        EXPECT_FALSE(
            run({{"encryptedResult", "success"}, {"encryptedCardStatus", "a1"}, {"encryptedCardType", text}})
                .error);
        EXPECT_EQ(config.decCardStatus, "a1");
        EXPECT_EQ(config.currentCardType, type);
        const std::string caseName{cardTypeCaseName(type)};
        const auto printed = lines();
        EXPECT_EQ(std::vector(printed.end() - 6, printed.end() - 1),
                  (std::vector<std::string>{"theEncCardStatus: " + encipher("a1"), "decCardStatus: a1",
                                            "theEncCardType: " + encipher(text), "decCardType: " + text,
                                            "SdkConfig.sharedInstance.currentCardType = " + caseName}));
    }
    // An unknown type: the line says physical, the type stays.
    EXPECT_FALSE(run({{"encryptedResult", "Success"},
                      {"encryptedCardStatus", "P2"},
                      {"encryptedCardType", " physical"}})
                     .error);
    EXPECT_EQ(config.decCardStatus, "P2");
    EXPECT_EQ(config.currentCardType, eKorvaneCardType::paywallet);
    EXPECT_TRUE(device.console->has("Unknown encoded card type, defaulting to .physical"));
}

TEST_F(CardStatus, AMissingFieldIsAFailureThatKeepsWhatCameBefore) {
    config.decCardStatus = "old";
    EXPECT_EQ(run({{"encryptedResult", "Success"}, {"encryptedCardType", "physical"}}).errorMsg,
              "Encrypted card status nil");
    EXPECT_EQ(config.decCardStatus, "old");
    const KorvaneRetStruct record = run({{"encryptedResult", "Success"}, {"encryptedCardStatus", "BT"}});
    EXPECT_TRUE(record.error);
    EXPECT_EQ(record.errorMsg, "Encrypted card type nil");
    EXPECT_FALSE(record.jsonResponseStr.empty());
    EXPECT_EQ(config.decCardStatus, "BT");
    EXPECT_EQ(
        run({{"encryptedResult", "No"}, {"encryptedCardStatus", "A1"}, {"encryptedCardType", "virtual"}})
            .errorMsg,
        "No");
    EXPECT_EQ(config.decCardStatus, "BT");
    EXPECT_EQ(config.currentCardType, eKorvaneCardType::none);
}

TEST_F(CardStatus, SettingItSendsTheCodeAndStoresNothing) {
    willAnswer({ok({{"encryptedResult", "Success"}})});
    KorvaneRetStruct record;
    record.error = true;
    doSetCardStatus("BT", [&](KorvaneRetStruct done) { record = std::move(done); });
    settle();
    EXPECT_FALSE(record.error);
    EXPECT_EQ(called(), std::vector<std::string>{"cardStatus"});
    EXPECT_EQ(decipher(sent(0)["encryptedStatus"]), "BT");
    EXPECT_EQ(config.decCardStatus, "");
}

}  // namespace
}  // namespace korvane
