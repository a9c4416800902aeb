// SPDX-License-Identifier: Apache-2.0
#include "transport/FlatJson.h"

#include <gtest/gtest.h>

namespace korvane {
namespace {

using namespace std::string_literals;

/// What the short way makes of a text: "-" when it leaves it to the JSON library.
std::string read(const std::string& json) {
    WireText a;
    WireText b;
    const TextSlot slots[] = {{"a", &a}, {"b", &b}};
    return readFlatJson(json, slots) ? a.value_or("none") + ", " + b.value_or("none") : "-";
}

TEST(FlatJson, ReadsPlainObjectsOfTextsAlone) {
    EXPECT_EQ(read("{}"), "none, none");
    EXPECT_EQ(read(" {\t} \r\n"), "none, none");
    EXPECT_EQ(read(R"({"a":"1","x":"2","b":"3"})"), "1, 3");
    EXPECT_EQ(read(" {\n\"b\" : \"\" , \"a\" :\t\"x y\" }\r\n"), "x y, ");
    EXPECT_EQ(read(R"({"a":"1","b":"2","a":"3","b":null})"), "3, none");
    // Wrong, or more than it can do: not one of them is taken for something else.
    for (const std::string& json : {""s,
                                    "{"s,
                                    "null"s,
                                    "[]"s,
                                    "{}{}"s,
                                    "{} x"s,
                                    R"({"a":"1",})"s,
                                    R"({,"a":"1"})"s,
                                    R"({"a" "1"})"s,
                                    R"({"a":"1" "b":"2"})"s,
                                    R"({"a":"1")"s,
                                    R"({"a":"1)"s,
                                    R"({a:"1"})"s,
                                    R"({"a":'1'})"s,
                                    R"({"a":1})"s,
                                    R"({"x":["1"]})"s,
                                    R"({"a":nul})"s,
                                    R"({"a":nullx})"s,
                                    R"({"a":"\n"})"s,
                                    R"({"\u0061":"1"})"s,
                                    "{\"a\":\"1\n\"}"s,
                                    "{\"a\n\":\"1\"}"s,
                                    "{\"a\":\"\xC3\xA9\"}"s,
                                    "{\"a\":\"1\"}\0"s,
                                    "\xEF\xBB\xBF{}"s,
                                    "{\"a\":\"1\0\"}"s,
                                    "{\f}"s}) {
        EXPECT_EQ(read(json), "-") << json;
    }
}

TEST(FlatJson, ReadsLongTextsWhole) {
    for (const std::size_t size : {16'383, 16'384, 16'385, 32'768, 100'000}) {
        const std::string text(size, 'k');
        EXPECT_EQ(read("{\"a\":\"" + text + "\",\"b\":\"" + text + "\"}"), text + ", " + text);
        EXPECT_EQ(read("{\"a\":\"" + text + "\n\"}"), "-");
    }
}

TEST(FlatJson, WritesWhatItReads) {
    TextMap texts;
    EXPECT_EQ(writeFlatJson(texts), "{}");
    texts.set("a", "x+/=");
    texts.set("b", "");
    EXPECT_EQ(writeFlatJson(texts), R"({"a":"x+/=","b":""})");
    for (const std::string& odd : {"\""s, "\\"s, "\n"s, "\0"s, "é"s}) {
        texts.set("b", odd);
        EXPECT_EQ(writeFlatJson(texts), std::nullopt);
    }
}

}  // namespace
}  // namespace korvane
