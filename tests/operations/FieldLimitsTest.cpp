// SPDX-License-Identifier: Apache-2.0
#include "operations/FieldLimits.h"

#include "operations/Operations.h"
#include "tests/support/ServiceFixture.h"

namespace korvane {
namespace {

using testing::HasSubstr;

class FieldLimits : public ServiceFixture {
  protected:
    std::string limited(std::string_view field, std::string text) {
        limitField(field, text);
        return text;
    }
};

/// So many of that character.
std::string times(std::size_t count, std::string_view character) {
    std::string text;
    while (count-- > 0) text += character;
    return text;
}

TEST_F(FieldLimits, CutOnlyWhatIsLongerAndNeverACharacter) {
    for (const auto& [field, most] : fieldLimits) {
        for (const std::string_view character : {"a", "é", "€", "😀"}) {
            EXPECT_EQ(limited(field, times(most, character)), times(most, character));
            EXPECT_EQ(printed(), "");
            for (const std::size_t count : {most + 1, 2 * most, std::size_t{100'000}})
                EXPECT_EQ(limited(field, times(count, character)), times(most - 1, character) + "…");
            EXPECT_THAT(printed(), HasSubstr("dec" + std::string(field) + " was cut to " +
                                             std::to_string(most) + " characters"));
        }
        EXPECT_EQ(limited(field, ""), "");
    }
}

TEST_F(FieldLimits, HoldForEveryTextOfAReply) {
    const std::string word = times(100'000, "é");
    std::string disclosures;
    for (int i = 0; i < 20; ++i) {
        disclosures += disclosures.empty() ? R"({"CardDisclosures":[)" : ",";
        disclosures += R"({"Language":")" + (i == 0 ? word : "x") + R"(","CardDisclosure":")" +
                       (i < 2 ? word : std::to_string(i)) + "\"}";
    }
    Fields fields{{"encryptedResult", "Success"}, {"encryptedCardDisclosures", disclosures + "]}"}};
    for (const char* const name :
         {"CardImage", "Pan", "Cvv", "ExpiryDate", "FirstName", "MiddleName", "LastName", "CardNetwork"})
        fields.emplace_back(std::string("encrypted") + name, word);
    willAnswer({ok(fields)});
    const Handle call = doCardImage(state, [](const KorvaneRetStruct&) {});
    settle();
    EXPECT_EQ(state->decCardImage, word) << "the decoder bounds the picture";
    const std::pair<std::size_t, const std::string*> texts[] = {
        {32, &state->decPan},        {8, &state->decCvv},          {32, &state->decExpiryDate},
        {200, &state->decFirstName}, {200, &state->decMiddleName}, {200, &state->decLastName},
        {64, &state->decCardNetwork}};
    for (const auto& [most, text] : texts) EXPECT_EQ(*text, times(most - 1, "é") + "…");
    const auto& items = *state->decodedDisclosuresStruct->CardDisclosures;
    ASSERT_EQ(items.size(), 16u);
    EXPECT_EQ(items[0].Language, times(63, "é") + "…");
    EXPECT_EQ(items[1].CardDisclosure, times(32'767, "é") + "…");
    EXPECT_EQ(items[15].CardDisclosure, "15");
    EXPECT_THAT(printed(), HasSubstr("decCardDisclosures was cut to 16 disclosures"));
}

}  // namespace
}  // namespace korvane
