// SPDX-License-Identifier: Apache-2.0
#include "transport/FieldCipher.h"

#include "tests/support/ServiceFixture.h"
#include "transport/AesCbc.h"

namespace korvane {
namespace {

using namespace std::string_literals;
using Bytes = std::vector<std::uint8_t>;

Bytes fromHex(const std::string& hex) {
    Bytes bytes(hex.size() / 2);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::uint8_t>(std::stoi(hex.substr(2 * i, 2), nullptr, 16));
    }
    return bytes;
}

TEST(AesCbc, AgreesWithThePublishedVectors) {
    // NIST SP 800-38A, F.2.1 to F.2.6: the same four blocks under three keys. The padding adds a fifth.
    const Bytes iv = fromHex("000102030405060708090a0b0c0d0e0f");
    const Bytes plain = fromHex(
        "6bc1bee22e409f96e93d7e117393172aae2d8a571e03ac9c9eb76fac45af8e51"
        "30c81c46a35ce411e5fbc1191a0a52eff69f2445df4f9b17ad2b417be66c3710");
    const std::pair<std::string, std::string> vectors[] = {
        {"2b7e151628aed2a6abf7158809cf4f3c",
         "7649abac8119b246cee98e9b12e9197d5086cb9b507219ee95db113a917678b2"
         "73bed6b8e3c1743b7116e69e222295163ff1caa1681fac09120eca307586e1a7"},
        {"8e73b0f7da0e6452c810f32b809079e562f8ead2522c6b7b",
         "4f021db243bc633d7178183a9fa071e8b4d9ada9ad7dedf4e5e738763f69145a"
         "571b242012fb7ae07fa9baac3df102e008b0e27988598881d920a9e64f5615cd"},
        {"603deb1015ca71be2b73aef0857d77811f352c073b6108d72d9810a30914dff4",
         "f58c4c04d6e5f1ba779eabfb5f7bfbd69cfc4e967edb808d679f777bc6702c7d"
         "39f23369a9d9bacfa530e26304231461b2eb05e2c39be9fcda6c19078c6a9d1b"},
    };
    for (const auto& [key, cipher] : vectors) {
        const Bytes enciphered = aesCbcEncrypt(fromHex(key), iv, plain).value();
        EXPECT_EQ(Bytes(enciphered.begin(), enciphered.begin() + 64), fromHex(cipher));
        EXPECT_EQ(enciphered.size(), 80u);
        EXPECT_EQ(aesCbcDecrypt(fromHex(key), iv, enciphered), plain);
    }
}

class FieldCipher : public ServiceFixture {};

TEST_F(FieldCipher, KeepsAnyTextAndGarblesUnderAnotherIv) {
    // printf 1357 | openssl enc -aes-256-cbc -base64 -iv 0001…0f -K 0707…07
    EXPECT_EQ(encryptField(iv, "1357"), "kcWr+oK2CncMcf734spCBA==");
    for (const std::string text : {"", "0123456789abcdef", "Zoë Ångström 卡片 🙂", "a\nb\tc"}) {
        EXPECT_EQ(decryptField(iv, encryptField(iv, text)), text);
    }
    EXPECT_EQ(encryptField(iv, "").size(), 24u);
    Bytes other = iv;
    other[0] ^= 1;
    EXPECT_EQ(decryptField(other, encryptField(iv, "0123456789abcdefSuccess")), "1123456789abcdefSuccess");
}

TEST_F(FieldCipher, EveryFailureIsTheEmptyText) {
    const std::string good = encryptField(iv, "a text of more than one block");
    for (const std::size_t size : {0, 15, 17}) {
        EXPECT_EQ(encryptField(Bytes(size), "text") + decryptField(Bytes(size), good), "");
    }
    for (const std::string& bad : {""s, good.substr(0, 20) + "\n" + good.substr(20), good + " ",
                                   good.substr(0, 40), "AAAA"s, "not base64"s}) {
        EXPECT_EQ(decryptField(iv, bad), "") << bad;
    }
    for (const std::size_t size : {0, 20, 33}) {
        config.preSharedKeyByteArray = Bytes(size);
        EXPECT_EQ(encryptField(iv, "text") + decryptField(iv, good), "");
    }
}

TEST_F(FieldCipher, BytesThatAreNotUtf8AreTakenAsUtf16) {
    const auto decipherBytes = [this](const std::string& bytes) { return decryptField(iv, encipher(bytes)); };
    EXPECT_EQ(decipherBytes("\xFF\xFE\xE9\x00"s), "é");
    EXPECT_EQ(decipherBytes("\xFE\xFF\x00\xE9\xD8\x3D\xDE\x42"s), "é🙂");
    EXPECT_EQ(decipherBytes("\xE9\x00"s), "é");
    EXPECT_EQ(decipherBytes("\xFF\xFE\x00\xD8"s), "");  // half of a pair
    EXPECT_EQ(decipherBytes("ab\xFF"), "");             // neither
}

TEST_F(FieldCipher, TakesALongFieldInPiecesAsItWouldWhole) {
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

TEST_F(FieldCipher, RefusesALongFieldForAWrongCharacterInAnyPiece) {
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
