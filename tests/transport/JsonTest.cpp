// SPDX-License-Identifier: Apache-2.0
#include "transport/Json.h"

#include <gtest/gtest.h>

namespace korvane {
namespace {

using namespace std::string_literals;

template <class Value>
std::string errorOf(const std::variant<Value, JsonError>& outcome) {
    const auto* error = std::get_if<JsonError>(&outcome);
    return error ? error->text : "";
}

/// Every field of the record, and no other, is read and written under its own key.
template <class Record>
void expectKeys(const std::vector<std::string>& keys) {
    std::string json = "{";
    for (const std::string& key : keys)
        json += (json.size() > 1 ? ",\"" : "\"") + key + "\":\"" + key + "!\"";
    json += "}";
    const auto record = decodeRecord<Record>(json);
    ASSERT_EQ(errorOf(record), "");
    EXPECT_EQ(std::get<std::string>(encodeRecord(std::get<Record>(record))), json);
    EXPECT_EQ(sizeof(Record), keys.size() * sizeof(WireText));
    EXPECT_EQ(std::get<Record>(record).encryptedResult, "encryptedResult!");
    EXPECT_EQ(std::get<std::string>(encodeRecord(Record{})), "{}");
}

TEST(WireRecords, KeysAreTheFieldsNames) {
    expectKeys<RestBearerToken>({"encryptedResult", "encryptedAccessToken", "encryptedExpiration"});
    expectKeys<RestPciTokenRequest>({"encryptedPciSmsToken", "encryptedResult"});
    expectKeys<RestPciTokenSubmission>({"encryptedResult", "encryptedPciToken", "encryptedPciTokenExpiration",
                                        "encryptedBiometricsAuthenticationTimer"});
    expectKeys<RestGetCardStatus>({"encryptedResult", "encryptedCardStatus", "encryptedCardType"});
    expectKeys<RestGetCardImage>({"encryptedResult", "encryptedCardImage", "encryptedCardDisclosures",
                                  "encryptedPan", "encryptedCvv", "encryptedExpiryDate", "encryptedFirstName",
                                  "encryptedMiddleName", "encryptedLastName", "encryptedCardNetwork"});
    expectKeys<RestPinSet>({"encryptedResult"});
}

TEST(WireRecords, WhatIsMissingIsAbsentAndWhatIsUnknownIsSkipped) {
    const auto read = [](std::string json) {
        return std::get<RestGetCardStatus>(decodeRecord<RestGetCardStatus>(std::move(json)));
    };
    EXPECT_FALSE(read("{}").encryptedResult);
    EXPECT_FALSE(read(R"({"encryptedResult": "first", "encryptedResult": null})").encryptedResult);
    EXPECT_EQ(read(R"( {"x": [1, {"encryptedResult": "no"}], "encryptedResult": "a\u00e9\n\ud83d\ude42\/"} )")
                  .encryptedResult,
              "aé\n🙂/");
    EXPECT_EQ(read(R"({"encryptedResult": "first", "encryptedResult": "last"})").encryptedResult, "last");
    EXPECT_EQ(read(R"({"encryptedResult": "a\u0000b"})").encryptedResult, "a\0b"s);
    EXPECT_FALSE(read(R"({"encryptedresult": "other case"})").encryptedResult);
}

TEST(WireRecords, WhatIsNoSuchObjectIsAnErrorThatSaysWhy) {
    const std::string deep = std::string(1'000'000, '[') + std::string(1'000'000, ']');
    const std::pair<std::string, std::string> cases[] = {
        {"", "The document is empty. (at byte 0)"},
        {"<html>", "Invalid value. (at byte 0)"},
        {"[]", "not a JSON object"},
        {deep, "not a JSON object"},
        {R"({"encryptedResult": 1})", R"(the value of "encryptedResult" is not a text)"},
        {R"({"encryptedResult": "a"} x)",
         "The document root must not be followed by other values. (at byte 25)"},
        {"{}\0{}"s, "a NUL stands in the text"},
        {"{\"encryptedResult\": \"\xC3(\"}", "the text is not UTF-8"},
        {R"({"encryptedResult": "\ud800"})", "The surrogate pair in string is invalid. (at byte 21)"},
    };
    for (const auto& [json, error] : cases)
        EXPECT_EQ(errorOf(decodeRecord<RestPinSet>(json)), error) << json.substr(0, 80);
    EXPECT_EQ(errorOf(decodeRecord<RestPinSet>("{\"x\":" + deep + "}")), "");
}

TEST(Disclosures, AreAListOfItemsWithOptionalTexts) {
    for (const std::string json :
         {R"({"CardDisclosures":[{"Language":"en","CardDisclosure":"t"},{"Language":"fr"},{}]})",
          R"({"CardDisclosures":[]})", "{}"}) {
        const auto outcome = decodeDisclosures(json);
        ASSERT_EQ(errorOf(outcome), "");
        EXPECT_EQ(std::get<std::string>(encodeDisclosures(std::get<DecryptedCardDisclosure>(outcome))), json);
    }
}

}  // namespace
}  // namespace korvane
