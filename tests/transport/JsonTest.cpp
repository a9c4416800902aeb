// SPDX-License-Identifier: Apache-2.0
#include "transport/Json.h"

#include <gtest/gtest.h>

#include "transport/FlatJson.h"

namespace korvane {
namespace {

using namespace std::string_literals;

std::string errorOf(const std::string& json) {
    const auto outcome = decodeRecord<RestPinSet>(json);
    const auto* error = std::get_if<JsonError>(&outcome);
    return error ? error->text : "";
}

TEST(WireRecords, WhatIsNoObjectOfTextsIsAnErrorThatSaysWhy) {
    EXPECT_EQ(errorOf(R"({"encryptedResult": 1})"), R"(the value of "encryptedResult" is not a text)");
    EXPECT_EQ(errorOf(R"({"encryptedResult": [null]})"), R"(the value of "encryptedResult" is not a text)");
    EXPECT_EQ(errorOf(R"({"encryptedResult": "a"} x)"),
              "The document root must not be followed by other values. (at byte 25)");
    EXPECT_EQ(errorOf(R"([{"encryptedResult": "a"}])"), "not a JSON object");
    EXPECT_EQ(errorOf("5"), "not a JSON object");
    EXPECT_EQ(errorOf(R"({"x":[{"encryptedResult": 1},"encryptedResult",{}],"encryptedresult":{}})"), "")
        << "nobody asks for these keys";
}

TEST(WireRecords, AreNestedSixtyFourDeepAtMost) {
    const auto nested = [](std::size_t depth) {
        return "{\"x\":" + std::string(depth - 1, '[') + std::string(depth - 1, ']') + "}";
    };
    EXPECT_EQ(errorOf(nested(64)), "");
    EXPECT_EQ(errorOf(nested(65)), "nested more than 64 deep");
    EXPECT_EQ(errorOf(nested(1'000'000)), "nested more than 64 deep");
    EXPECT_EQ(errorOf("{\"x\":" + std::string(1'000'000, '[')), "nested more than 64 deep");
    EXPECT_EQ(errorOf(std::string(1'000'000, '[')), "not a JSON object");
    std::string objects = "null";
    for (int i = 0; i < 64; ++i) objects = "{\"encryptedResult\":null,\"x\":" + objects + "}";
    EXPECT_EQ(errorOf(objects), "");
    EXPECT_EQ(errorOf("{\"x\":" + objects + "}"), "nested more than 64 deep");
}

TEST(WireRecords, SkipAByteOrderMark) {
    const std::string mark = "\xEF\xBB\xBF";
    for (const char* const text : {R"({"encryptedResult":"r"})", R"({"x":[],"encryptedResult":"r"})"}) {
        EXPECT_EQ(std::get<RestPinSet>(decodeRecord<RestPinSet>(mark + text)).encryptedResult, "r");
        EXPECT_EQ(errorOf(mark + mark + text), "Invalid value. (at byte 0)");
        EXPECT_EQ(errorOf(text + mark), "The document root must not be followed by other values. (at byte " +
                                            std::to_string(std::string(text).size()) + ")");
    }
    const auto disclosures = decodeDisclosures(mark + R"({"CardDisclosures":[{}]})", 16);
    EXPECT_EQ(std::get<DecryptedCardDisclosure>(disclosures).CardDisclosures->size(), 1u);
}

/// The texts, one a line; "-" for one that is absent; else why there are none.
std::string disclosuresOf(const std::string& json) {
    const auto outcome = decodeDisclosures(json, 3);
    if (const auto* const error = std::get_if<JsonError>(&outcome)) return error->text;
    const auto& list = std::get<DecryptedCardDisclosure>(outcome).CardDisclosures;
    if (!list) return "none";
    std::string texts;
    for (const auto& item : *list)
        texts += item.Language.value_or("-") + ": " + item.CardDisclosure.value_or("-") + "\n";
    return texts;
}

TEST(Disclosures, AreAListOfObjectsOfTexts) {
    EXPECT_EQ(
        disclosuresOf(R"({"x":[[{"CardDisclosures":1}]],"CardDisclosures":[{"Language":"en","x":{"y":[]},)"
                      R"("CardDisclosure":"A"},{},{"CardDisclosure":"C"}],"y":{"Language":1}})"),
        "en: A\n-: -\n-: C\n");
    EXPECT_EQ(disclosuresOf(R"({"CardDisclosures":[{}],"CardDisclosures":[]})"), "") << "the last one counts";
    for (const char* const json : {"{}", R"({"CardDisclosures":null})", R"({"x":{"CardDisclosures":[{}]}})",
                                   R"({"CardDisclosures":[{}],"CardDisclosures":null})"})
        EXPECT_EQ(disclosuresOf(json), "none") << json;
    for (const char* const json : {R"({"CardDisclosures":{}})", R"({"CardDisclosures":"x"})"})
        EXPECT_EQ(disclosuresOf(json), "the value of \"CardDisclosures\" is not a list") << json;
    for (const char* const json : {"[]", "1", R"({"CardDisclosures":[[{}]]})",
                                   R"({"CardDisclosures":[null]})", R"({"CardDisclosures":[{},"x"]})"})
        EXPECT_EQ(disclosuresOf(json), "not a JSON object") << json;
    EXPECT_EQ(disclosuresOf(R"({"CardDisclosures":[{"Language":1}]})"),
              R"(the value of "Language" is not a text)");
    EXPECT_EQ(disclosuresOf(R"({"CardDisclosures":[{},{},{},{"Language":"d"},{},{}]})"),
              "-: -\n-: -\n-: -\n");
    EXPECT_EQ(disclosuresOf(R"({"CardDisclosures":[{"Language":")" + std::string(4 << 20, 'a') + "\"}]}"),
              "longer than 4 MiB");
}

/// What is read of two texts; "-" when it is left to the JSON library.
std::string readShort(const std::string& json) {
    WireText a, b;
    const TextSlot slots[] = {{"a", &a}, {"b", &b}};
    return readFlatJson(json, slots) ? a.value_or("none") + ", " + b.value_or("none") : "-";
}

TEST(FlatJson, ReadsPlainObjectsOfTextsAlone) {
    EXPECT_EQ(readShort("{}"), "none, none");
    EXPECT_EQ(readShort(R"({"a":"1","x":"2","b":"3"})"), "1, 3");
    EXPECT_EQ(readShort(" {\n\"b\" : \"\" , \"a\" :\t\"x y\" }\r\n"), "x y, ");
    for (const std::size_t size : {16'383, 16'384, 16'385, 32'768, 100'000}) {
        const std::string text(size, 'k');
        EXPECT_EQ(readShort("{\"a\":\"" + text + "\",\"b\":\"" + text + "\"}"), text + ", " + text);
        EXPECT_EQ(readShort("{\"a\":\"" + text + "\n\"}"), "-");
    }
    for (const std::string& json : std::vector<std::string>{
             "", "{", "[]", "{}x", R"({"a"})", R"({"a":})", R"({"a":1})", R"({"a":"1",})", R"({,"a":"1"})",
             R"({"a":"1" "b":"2"})", R"({"a":"1"}})", R"({"a":"\n"})", R"({a:"1"})", R"({"a":nullx})",
             R"({"a":"1)", "{\"a\":\"\xC3\"}", "{\"a\"\f:\"1\"}", "{\"a\":\"1\"}\0"s})
        EXPECT_EQ(readShort(json), "-") << json;
}

}  // namespace
}  // namespace korvane
