// SPDX-License-Identifier: Apache-2.0
#include "transport/FieldCipher.h"

#include "tests/support/ServiceFixture.h"

namespace korvane {
namespace {

using Bytes = std::vector<std::uint8_t>;

class FieldCipher : public ServiceFixture {};

TEST_F(FieldCipher, KeepsAnyTextUnderAnyKeyAndGarblesUnderAnotherIv) {
    // printf 1357 | openssl enc -aes-256-cbc -base64 -iv 0001…0f -K 0707…07, and so with 192 and 128
    for (const auto& [size, enciphered] : {std::pair{16, "DFmabz8+/i8O/LO4wkLbqA=="},
                                           {24, "S2MgoRZBzplHo/x8rOALrg=="},
                                           {32, "kcWr+oK2CncMcf734spCBA=="}}) {
        config.preSharedKeyByteArray = Bytes(static_cast<std::size_t>(size), 7);
        EXPECT_EQ(encryptField(iv, "1357"), enciphered);
        for (const std::string text : {"", "0123456789abcdef", "Zoë Ångström 卡片 🙂", "a\nb\tc"}) {
            EXPECT_EQ(decryptField(iv, encryptField(iv, text)), text);
        }
    }
    Bytes other = iv;
    other[0] ^= 1;
    EXPECT_EQ(decryptField(other, encryptField(iv, "0123456789abcdefSuccess")), "1123456789abcdefSuccess");
}

TEST_F(FieldCipher, TakesALongFieldInPiecesAsItWouldWhole) {
    // Around the ends of pieces, which have 12 KiB of enciphered bytes.
    for (const std::size_t size :
         {239u, 240u, 241u, 12'271u, 12'272u, 12'287u, 12'288u, 12'289u, 24'576u, 50'000u}) {
        for (const std::string last : {"", "é", "\xF0\x9F\x99\x82"}) {
            const std::string text = std::string(size, 'k') + last;
            EXPECT_EQ(encryptField(iv, text), encipher(text));
            EXPECT_EQ(decryptField(iv, encipher(text)), text) << size;
        }
    }
}

TEST_F(FieldCipher, RefusesALongFieldForAWrongCharacterInAnyPiece) {
    const std::string field = encryptField(iv, std::string(50'000, 'k'));
    const auto with = [&](std::size_t place, const std::string& text) {
        return decryptField(iv, std::string(field).replace(place, text.size(), text));
    };
    for (const std::size_t place : {0u, 16'383u, 16'384u, 32'767u, 49'151u, 60'000u}) {
        for (const char* wrong : {"=", "\n", "\x80"}) EXPECT_EQ(with(place, wrong), "") << place;
    }
    EXPECT_EQ(with(16'380, "AA=="), "");  // right at the end of a piece, and nowhere else
    EXPECT_EQ(decryptField(iv, field.substr(0, 32'768)), "");  // whole groups and blocks, no end
}

}  // namespace
}  // namespace korvane
