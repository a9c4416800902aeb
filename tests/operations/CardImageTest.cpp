// SPDX-License-Identifier: Apache-2.0
#include "operations/Operations.h"
#include "tests/support/ServiceFixture.h"

namespace korvane {
namespace {

class CardImage : public ServiceFixture {
  protected:
    KorvaneRetStruct run(const Fields& fields) {
        willAnswer({ok(fields)});
        KorvaneRetStruct result;
        doCardImage([&](KorvaneRetStruct record) { result = std::move(record); });
        settle();
        return result;
    }
    /// The lines between the result word and the record, for these values in this order.
    std::string lines(const Fields& values) const {
        std::string text;
        for (const auto& [name, value] : values)
            text += "|theEnc" + name + ": " + encipher(value) + "|dec" + name + ": " + value;
        return text + "|KorvaneRetStruct(error: false, ";
    }
};

TEST_F(CardImage, EveryValueIsStoredAndPrintedInOrderBehindFixedMasks) {
    const std::string disclosures = R"({"CardDisclosures":[{"Language":"English","CardDisclosure":"x"}]})";
    const Fields values{{"CardImage", "aW1n"},
                        {"CardDisclosures", disclosures},
                        {"Pan", "5555550000079197123"},
                        {"Cvv", "8642"},
                        {"ExpiryDate", "12/31"},
                        {"FirstName", "Inés"},
                        {"MiddleName", ""},
                        {"LastName", "Núñez"},
                        {"CardNetwork", "visa"}};
    Fields reply;
    for (const auto& [name, value] : values) reply.emplace_back("encrypted" + name, value);
    reply.emplace_back("encryptedResult", "SUCCESS");
    const KorvaneRetStruct record = run(reply);
    EXPECT_FALSE(record.error);
    EXPECT_EQ(record.errorMsg, "");
    EXPECT_THAT(printed(), testing::HasSubstr("|decResult: SUCCESS" + lines(values)));
    EXPECT_EQ(config.decCardImage + "|" + config.decPan + "|" + config.decMaskedPan + "|" + config.decCvv +
                  "|" + config.decMaskedCvv + "|" + config.decExpiryDate + "|" + config.decFirstName + "|" +
                  config.decMiddleName + "|" + config.decLastName + "|" + config.decCardNetwork,
              "aW1n|5555550000079197123|################|8642|###|12/31|Inés||Núñez|visa");
    EXPECT_EQ(config.decodedDisclosuresStruct->CardDisclosures->at(0).CardDisclosure, "x");
}

TEST_F(CardImage, AMissingValueIsEmptyAndTheRestGoesOn) {
    config.decPan = config.decCardImage = "of another card";
    config.decodedDisclosuresStruct.emplace();
    const KorvaneRetStruct record =
        run({{"encryptedResult", "Success"}, {"encryptedCvv", "864"}, {"encryptedCardNetwork", "visa"}});
    EXPECT_FALSE(record.error);
    EXPECT_EQ(config.decPan + config.decCardImage, "");
    EXPECT_EQ(config.decCvv + config.decCardNetwork, "864visa");
    EXPECT_FALSE(config.decodedDisclosuresStruct);
    EXPECT_THAT(printed(), testing::HasSubstr("|disclosure decode failed" +
                                              lines({{"Cvv", "864"}, {"CardNetwork", "visa"}})));
}

TEST_F(CardImage, DisclosuresThatDoNotDecodeAreToldWithoutAnError) {
    for (const std::string text :
         {"", "{", "[]", R"({"CardDisclosures":{}})", R"({"CardDisclosures":[1]})"}) {
        const KorvaneRetStruct record =
            run({{"encryptedResult", "Success"}, {"encryptedCardDisclosures", text}, {"encryptedPan", "55"}});
        EXPECT_FALSE(record.error) << text;
        EXPECT_EQ(record.errorMsg, "disclosure decode failed") << text;
        EXPECT_FALSE(config.decodedDisclosuresStruct) << text;
        EXPECT_EQ(config.decPan, "55");
        EXPECT_TRUE(device.console->has("disclosure decode failed"));
        device.console->clear();
    }
    EXPECT_EQ(run({{"encryptedResult", "Success"}, {"encryptedCardDisclosures", "{}"}}).errorMsg, "");
    EXPECT_TRUE(config.decodedDisclosuresStruct);
}

}  // namespace
}  // namespace korvane
