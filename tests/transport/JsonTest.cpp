// SPDX-License-Identifier: Apache-2.0
#include "transport/Json.h"

#include <gtest/gtest.h>

#include <functional>

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

/// What is read of two texts; "-" when it is refused.
std::string read(const std::string& json,
                 const std::function<bool(const std::string&, std::span<const TextSlot>)>& way) {
    WireText a, b;
    const TextSlot slots[] = {{"a", &a}, {"b", &b}};
    return way(json, slots) ? a.value_or("none") + ", " + b.value_or("none") : "-";
}

/// Where "-" leaves it to the JSON library.
std::string readShort(const std::string& json) {
    return read(json, readFlatJson);
}

std::string readByLibrary(std::string json) {
    json.insert(json.find('{') + 1, R"("":0,)");  // a number goes that way
    return read(json, [](auto& text, auto slots) { return decodeTexts(text, slots).index() == 0; });
}

TEST(FlatJson, ReadsPlainObjectsOfTextsAlone) {
    EXPECT_EQ(readShort("{}"), "none, none");
    EXPECT_EQ(readShort(" {\t} \r\n"), "none, none");
    EXPECT_EQ(readShort(R"({"a":"1","x":"2","b":"3"})"), "1, 3");
    EXPECT_EQ(readShort(" {\n\"b\" : \"\" , \"a\" :\t\"x y\" }\r\n"), "x y, ");
    EXPECT_EQ(readShort(R"({"a":"1","b":"2","a":"3","b":null})"), "3, none");
    for (const std::size_t size : {16'383, 16'384, 16'385, 32'768, 100'000}) {
        const std::string text(size, 'k');
        EXPECT_EQ(readShort("{\"a\":\"" + text + "\",\"b\":\"" + text + "\"}"), text + ", " + text);
        EXPECT_EQ(readShort("{\"a\":\"" + text + "\n\"}"), "-");
    }
}

TEST(FlatJson, TakesNothingForSomethingElse) {
    const std::string good = R"( {"a":"n1","b":null})", odd = "\"\\,:{}[]'n1 \n\f\x7F\xC3\xEF\0"s;
    for (std::size_t place = 0; place <= good.size(); ++place) {
        for (const std::size_t cut : {0, 1, 2, 4}) {
            for (std::size_t which = 0; which <= odd.size(); ++which) {
                const std::string json = std::string(good).replace(place, cut, odd.substr(which, 1));
                const std::string text = readShort(json);
                EXPECT_TRUE(text == "-" || text == readByLibrary(json)) << json;
            }
        }
    }
}

}  // namespace
}  // namespace korvane
