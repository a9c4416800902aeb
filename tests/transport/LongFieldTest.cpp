// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "tests/support/ServiceFixture.h"
#include "transport/FieldCipher.h"

namespace korvane {
namespace {

class LongField : public ServiceFixture {};

TEST_F(LongField, GoesThroughInPiecesAsItWouldWhole) {
    // Around the ends of pieces, which have 12 KiB of enciphered bytes.
    for (const std::size_t size :
         {239u, 240u, 241u, 12'271u, 12'272u, 12'287u, 12'288u, 12'289u, 24'576u, 50'000u}) {
        for (const std::string last : {"", "é", "\xF0\x9F\x99\x82"}) {
            const std::string text = std::string(size, 'k') + last;
            std::string field = encryptField(iv, text);
            EXPECT_EQ(field, encipher(text));
            decryptFieldInPlace(iv, field);
            EXPECT_EQ(field, text) << size;
        }
    }
    std::string utf16(60'000, '\0');
    for (std::size_t i = 0; i < utf16.size(); i += 2) utf16[i] = '\xE9';
    EXPECT_EQ(decryptField(iv, encipher(utf16)).size(), utf16.size());  // two bytes each
}

TEST_F(LongField, IsRefusedForAWrongCharacterInAnyPiece) {
    const std::string field = encryptField(iv, std::string(50'000, 'k'));
    for (const std::size_t place : {0u, 16'383u, 16'384u, 32'767u, 49'151u, 60'000u}) {
        for (const char wrong : {'=', '\n', '\x80'}) {
            std::string text = field;
            text[place] = wrong;
            EXPECT_EQ(decryptField(iv, text), "") << place;
        }
    }
    std::string padded = field;
    padded.replace(16'380, 4, "AA==");  // right at the end of a piece, and nowhere else
    EXPECT_EQ(decryptField(iv, padded), "");
    EXPECT_EQ(decryptField(iv, field.substr(0, 32'768)), "");  // whole groups and blocks, no end
}

}  // namespace
}  // namespace korvane
