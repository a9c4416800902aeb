// SPDX-License-Identifier: Apache-2.0
#include "base/Text.h"

#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <cstdlib>
#include <limits>
#include <random>

#include "base/Base64.h"
#include "base/TextKernels.h"

namespace korvane::testing {
namespace {

using namespace std::string_literals;
using Bytes = std::vector<std::uint8_t>;

std::mt19937 random{11};

std::string randomText(std::size_t size, std::string_view from) {
    std::string text(size, ' ');
    for (char& c : text) c = from[random() % from.size()];
    return text;
}

std::string byOpenSsl(const Bytes& bytes) {
    std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');  // and a NUL
    auto* const to = reinterpret_cast<unsigned char*>(text.data());
    EVP_EncodeBlock(to, bytes.data(), static_cast<int>(bytes.size()));
    text.pop_back();
    return text;
}

/// Whether the form takes the text. The room is exact, so that a sanitizer tells of a byte too many.
bool takes(const TextKernels& form, const std::string& text) {
    Bytes read(base64Room(text));
    return base64Decode(text, read.data(), form).has_value();
}

TEST(TextKernels, WriteAndReadBase64OfEveryLengthAsOpenSslDoes) {
    for (const TextKernels& form : runnableTextKernels()) {
        for (std::size_t size = 0; size <= 300; ++size) {
            Bytes bytes(size);
            for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
            const std::string text = base64Encode(bytes, form);
            EXPECT_EQ(text, byOpenSsl(bytes)) << form.name;
            Bytes read(base64Room(text));
            EXPECT_EQ(base64Decode(text, read.data(), form), size) << form.name;
            read.resize(size);
            EXPECT_EQ(read, bytes) << form.name;
        }
    }
}

TEST(TextKernels, ReadNothingButTheOneRightText) {
    for (const TextKernels& form : runnableTextKernels()) {
        for (const std::string text : {"A", "AA", "AAA", "AAAAA", "====", "AAA\n", "AAAA\n", "AA==AAAA"})
            EXPECT_FALSE(takes(form, text)) << form.name << ": " << text;
        // Every byte at every place. Padding is right at the end alone, where the bits left over are zero.
        const std::string good = base64Encode(Bytes(192), form);
        for (std::size_t place = 0; place < good.size(); ++place) {
            for (int byte = 0; byte < 256; ++byte) {
                std::string text = good;
                text[place] = static_cast<char>(byte);
                const bool wanted = (byte < 128 && std::isalnum(byte)) || byte == '+' || byte == '/' ||
                                    (byte == '=' && place == good.size() - 1);
                ASSERT_EQ(takes(form, text), wanted) << form.name << byte << '@' << place;
            }
        }
    }
}

TEST(TextKernels, StopAtTheByteThatTheyLookFor) {
    const TextKernels& portable = portableTextKernels();
    const std::string plain = R"( !#$%&'()*+,-./09:;<=>?@AZ[]^_`az{|}~)"
                              "\x7F";
    for (const TextKernels& form : runnableTextKernels()) {
        for (std::size_t size = 0; size <= 300; size += size < 140 ? 1 : 13) {
            const std::string good = randomText(size, plain);
            EXPECT_LT(size - form.plainJson(good.data(), size), 32u) << form.name;
            EXPECT_LT(size - form.ascii(good.data(), size), 64u) << form.name;
            for (std::size_t place = 0; place < size; ++place) {
                std::string text = good;
                text[place] = "\"\\\x1F\x00\n\x80\xFF"[random() % 7];
                const bool ascii = static_cast<unsigned char>(text[place]) < 0x80;
                ASSERT_LE(form.plainJson(text.data(), size), place) << form.name;
                ASSERT_EQ(portable.plainJson(text.data(), size), place);
                ASSERT_LE(form.ascii(text.data(), size), ascii ? size : place) << form.name;
                ASSERT_EQ(portable.ascii(text.data(), size), ascii ? size : place);
                ASSERT_EQ(plainJsonLength(text), place);
                ASSERT_EQ(isAscii(text), ascii);
            }
        }
    }
}

TEST(Text, ComparesAndLowersAsciiLettersAlone) {
    EXPECT_EQ(lowercased("Failure: IV Is AZ[@`{ ÄÉ"), "failure: iv is az[@`{ ÄÉ");
    EXPECT_TRUE(equalIgnoringCase("FAILURE: iv", "failure: IV"));
    EXPECT_FALSE(equalIgnoringCase("[", "{"));
    EXPECT_FALSE(equalIgnoringCase("Ä", "ä"));
    EXPECT_FALSE(equalIgnoringCase("a", "a "));
}

TEST(Text, TakesWellFormedUtf8Alone) {
    // The first and last of each length, and around the surrogates.
    for (const char* text :
         {"", "\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80", "\xEF\xBF\xBF",
          "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF", "a\xC3\xA9z"}) {
        EXPECT_TRUE(isUtf8(text)) << text;
    }
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
    EXPECT_EQ(utf8FromUtf16(Bytes{0xFE, 0xFF, 0xD8, 0x3D, 0xDC, 0x33}), "🐳");
    EXPECT_EQ(utf8FromUtf16(Bytes{0xFF, 0xDB, 0xFF, 0xDF}), "\xF4\x8F\xBF\xBF");
    EXPECT_EQ(utf8FromUtf16(Bytes{'a', 0, 0xFF, 0xFE}), "a\xEF\xBB\xBF");  // a mark at the start alone
    // Odd, half of a pair, and a pair the wrong way round.
    EXPECT_EQ(utf8FromUtf16(Bytes{'a', 0, 'b'}), std::nullopt);
    EXPECT_EQ(utf8FromUtf16(Bytes{0x3D, 0xD8}), std::nullopt);
    EXPECT_EQ(utf8FromUtf16(Bytes{0x3D, 0xD8, 'a', 0}), std::nullopt);
    EXPECT_EQ(utf8FromUtf16(Bytes{0x33, 0xDC, 0x3D, 0xD8}), std::nullopt);
}

TEST(Text, ReadsWholeDecimalNumbersAlone) {
    for (const char* text : {"60", "90.5", "3e2", "3E+2", "+5", "-5", ".5", "5.", "0", "007", "-0"})
        EXPECT_EQ(decimalNumber(text), std::atof(text)) << text;
    for (const std::string_view text : {"", "+", ".", "e5", " 5", "\n5", "5 ", "5s", "60,5", "5..", "1e",
                                        "+-5", "-+5", "inf", "nan", "-inf", "infinity", "1e999"}) {
        EXPECT_EQ(decimalNumber(text), std::nullopt) << text;
    }
    EXPECT_EQ(decimalNumber(std::string_view("5\0", 2)), std::nullopt);
}

TEST(Text, WritesTheShortestDecimalThatReadsBack) {
    for (const auto& [number, text] : {std::pair{60.0, "60.0"}, {90.5, "90.5"}, {-5.0, "-5.0"}})
        EXPECT_EQ(decimalText(number), text);
    for (const double number : {1.0 / 3, 1e100, 5e-324, std::numeric_limits<double>::max(), 1e16}) {
        EXPECT_EQ(decimalNumber(decimalText(number)), number) << decimalText(number);
    }
}

}  // namespace
}  // namespace korvane::testing
