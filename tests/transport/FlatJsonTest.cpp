// SPDX-License-Identifier: Apache-2.0
#include "transport/FlatJson.h"

#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <map>

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
}

/// What the JSON library makes of a text: "-" where it is no object of texts and nulls.
std::string readByLibrary(const std::string& json) {
    rapidjson::Document document;
    document.Parse<rapidjson::kParseValidateEncodingFlag>(json.data(), json.size());
    if (document.HasParseError() || !document.IsObject()) return "-";
    std::map<std::string, std::string> texts{{"a", "none"}, {"b", "none"}};
    for (auto member = document.MemberBegin(); member < document.MemberEnd(); ++member) {
        if (!member->value.IsString() && !member->value.IsNull()) return "-";
        texts[member->name.GetString()] = member->value.IsString() ? member->value.GetString() : "none";
    }
    return texts["a"] + ", " + texts["b"];
}

TEST(FlatJson, TakesNothingForSomethingElse) {
    const std::string good = R"( {"a":"n1","b":null})", odd = "\"\\,:{}[]'n1 \n\f\x7F\xC3\xEF\0"s;
    for (std::size_t place = 0; place <= good.size(); ++place) {
        for (const std::size_t cut : {0, 1, 2, 4}) {
            for (std::size_t which = 0; which <= odd.size(); ++which) {
                const std::string json = std::string(good).replace(place, cut, odd.substr(which, 1));
                const std::string text = read(json);
                EXPECT_TRUE(text == "-" || text == readByLibrary(json)) << json;
            }
        }
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
