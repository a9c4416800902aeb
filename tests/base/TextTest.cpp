// SPDX-License-Identifier: Apache-2.0
#include "base/Text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace korvane::testing {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(Text, ComparesAndLowersAsciiLettersAlone) {
    EXPECT_EQ(lowercased("Failure: IV Is AZ[@`{ ÄÉ"), "failure: iv is az[@`{ ÄÉ");
    EXPECT_TRUE(equalIgnoringCase("FAILURE: iv", "failure: IV"));
    EXPECT_FALSE(equalIgnoringCase("[", "{"));
    EXPECT_FALSE(equalIgnoringCase("Ä", "ä"));
    EXPECT_FALSE(equalIgnoringCase("a", "a "));
    EXPECT_FALSE(equalIgnoringCase("a", std::string_view("a\0", 2)));
}

TEST(Text, TakesWellFormedUtf8Alone) {
    // The first and last of each length, and around the surrogates.
    for (const char* text :
         {"", "\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80", "\xEF\xBF\xBF",
          "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF", "a\xC3\xA9z"}) {
        EXPECT_TRUE(isUtf8(text)) << text;
    }
    EXPECT_TRUE(isUtf8(std::string_view("\0", 1)));
    // Continuations without a lead, overlong, surrogates, past U+10FFFF, cut off, not continued.
    for (const char* text :
         {"\x80", "a\xBF", "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF", "\xED\xA0\x80",
          "\xED\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "\xC3", "a\xE2\x82", "\xF0\x9F\x92",
          "\xC3z", "\xE2\x82z", "\xF0\x9F\x92z", "\xE2z\x82"}) {
        EXPECT_FALSE(isUtf8(text)) << ::testing::PrintToString(text);
    }
}

TEST(Text, ReadsUtf16OfEitherOrder) {
    EXPECT_EQ(utf8FromUtf16({}), "");
    EXPECT_EQ(utf8FromUtf16(Bytes{'a', 0, 0xE9, 0}), "aé");
    EXPECT_EQ(utf8FromUtf16(Bytes{0xFF, 0xFE, 'a', 0}), "a");
    EXPECT_EQ(utf8FromUtf16(Bytes{0xFE, 0xFF, 0, 'a', 0x20, 0xAC}), "a€");
    EXPECT_EQ(utf8FromUtf16(Bytes{0xFE, 0xFF}), "");
    EXPECT_EQ(utf8FromUtf16(Bytes{0x3D, 0xD8, 0x33, 0xDC}), "🐳");
    EXPECT_EQ(utf8FromUtf16(Bytes{0xFE, 0xFF, 0xD8, 0x3D, 0xDC, 0x33}), "🐳");
    EXPECT_EQ(utf8FromUtf16(Bytes{0xFF, 0xDB, 0xFF, 0xDF}), "\xF4\x8F\xBF\xBF");
    EXPECT_EQ(utf8FromUtf16(Bytes{'a', 0, 0xFF, 0xFE}), "a\xEF\xBB\xBF")
        << "a mark counts at the start alone";
    // Odd, half of a pair, and a pair the wrong way round.
    const Bytes broken[] = {{'a'},
                            {'a', 0, 'b'},
                            {0x3D, 0xD8},
                            {0x33, 0xDC},
                            {0x33, 0xDC, 0x3D, 0xD8},
                            {0x3D, 0xD8, 'a', 0},
                            {0x3D, 0xD8, 0x3D, 0xD8}};
    for (const Bytes& bytes : broken) {
        EXPECT_EQ(utf8FromUtf16(bytes), std::nullopt) << ::testing::PrintToString(bytes);
    }
}

TEST(Text, ReadsWholeDecimalNumbersAlone) {
    const std::pair<const char*, double> numbers[] = {{"60", 60}, {"90.5", 90.5}, {"3e2", 300}, {"3E+2", 300},
                                                      {"+5", 5},  {"-5", -5},     {".5", 0.5},  {"5.", 5},
                                                      {"0", 0},   {"007", 7},     {"-0", 0}};
    for (const auto& [text, number] : numbers) {
        EXPECT_EQ(decimalNumber(text), number) << text;
    }
    for (const std::string_view text :
         {"",   "+",    "-",   ".",  "e5",  "abc", " 5",  "\t5", "\n5", "\v5", "\f5",  "\r5",      "5 ",
          "5s", "60,5", "5..", "1e", "--5", "+-5", "-+5", "++5", "inf", "nan", "-inf", "infinity", "1e999"}) {
        EXPECT_EQ(decimalNumber(text), std::nullopt) << text;
    }
    EXPECT_EQ(decimalNumber(std::string_view("5\0", 2)), std::nullopt);
}

TEST(Text, WritesTheShortestDecimalThatReadsBack) {
    for (const auto& [number, text] :
         {std::pair{60.0, "60.0"}, {90.5, "90.5"}, {0.0, "0.0"}, {-5.0, "-5.0"}}) {
        EXPECT_EQ(decimalText(number), text);
    }
    for (const double number :
         {1.0 / 3, 1e21, 1e100, 5e-324, std::numeric_limits<double>::max(), -1e-7, 1e16}) {
        EXPECT_EQ(decimalNumber(decimalText(number)), number) << decimalText(number);
    }
}

}  // namespace
}  // namespace korvane::testing
