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
    const std::string deep = std::string(1'000'000, '[') + std::string(1'000'000, ']');
    EXPECT_EQ(errorOf(R"({"encryptedResult": 1})"), R"(the value of "encryptedResult" is not a text)");
    EXPECT_EQ(errorOf(R"({"encryptedResult": "a"} x)"),
              "The document root must not be followed by other values. (at byte 25)");
    EXPECT_EQ(errorOf(deep), "not a JSON object");
    EXPECT_EQ(errorOf("{\"x\":" + deep + R"(,"encryptedresult": 1})"), "") << "nobody asks for these keys";
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
