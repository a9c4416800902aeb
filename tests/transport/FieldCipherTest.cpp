// SPDX-License-Identifier: Apache-2.0
#include "transport/FieldCipher.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <random>

#include "base/Base64.h"
#include "tests/support/ServiceFixture.h"
#include "transport/AesCbc.h"

namespace korvane {
namespace {

using namespace std::string_literals;
using Bytes = std::vector<std::uint8_t>;

Bytes fromHex(const std::string& hex) {
    Bytes bytes;
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

std::string toHex(const Bytes& bytes) {
    std::string hex;
    for (const std::uint8_t byte : bytes) {
        hex += "0123456789abcdef"[byte >> 4];
        hex += "0123456789abcdef"[byte & 15];
    }
    return hex;
}

TEST(AesCbc, AgreesWithThePublishedVectors) {
    // NIST SP 800-38A, F.2.1 to F.2.6: the same four blocks under three keys. The padding adds a fifth.
    const Bytes iv = fromHex("000102030405060708090a0b0c0d0e0f");
    const Bytes plain = fromHex(
        "6bc1bee22e409f96e93d7e117393172aae2d8a571e03ac9c9eb76fac45af8e51"
        "30c81c46a35ce411e5fbc1191a0a52eff69f2445df4f9b17ad2b417be66c3710");
    const std::pair<const char*, const char*> vectors[] = {
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
        const auto enciphered = aesCbcEncrypt(fromHex(key), iv, plain);
        ASSERT_TRUE(enciphered);
        EXPECT_EQ(toHex(*enciphered).substr(0, 128), cipher);
        EXPECT_EQ(enciphered->size(), 80u);
        EXPECT_EQ(aesCbcDecrypt(fromHex(key), iv, *enciphered), plain);
    }
}

class FieldCipher : public ServiceFixture {
  protected:
    /// Runs `openssl enc` on the bytes; what it wrote, or a failed test.
    static std::string openssl(const std::string& arguments, const std::string& input) {
        const std::string file = testing::TempDir() + "cipher-" + std::to_string(getpid());
        std::ofstream{file, std::ios::binary} << input;
        std::FILE* const pipe = popen(("openssl enc -in '" + file + "' " + arguments).c_str(), "r");
        std::string output;
        for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) output += static_cast<char>(c);
        EXPECT_EQ(pclose(pipe), 0);
        std::remove(file.c_str());
        return output;
    }
};

TEST_F(FieldCipher, AgreesWithTheCommandLineTool) {
    std::mt19937 random{20240607};
    for (const std::size_t keySize : {16, 24, 32}) {
        for (const std::size_t length : {0, 1, 4, 15, 16, 17, 1000}) {
            Bytes key(keySize);
            std::generate(key.begin(), key.end(), [&] { return static_cast<std::uint8_t>(random()); });
            std::string text(length, ' ');
            std::generate(text.begin(), text.end(), [&] { return static_cast<char>(' ' + random() % 95); });
            config.preSharedKeyByteArray = key;
            const std::string arguments = "-aes-" + std::to_string(keySize * 8) + "-cbc -K " + toHex(key) +
                                          " -iv " + toHex(iv) + " -base64 -A";
            EXPECT_EQ(openssl(arguments, text), encryptField(iv, text));
            EXPECT_EQ(openssl(arguments + " -d", encryptField(iv, text)), text);
        }
    }
}

TEST_F(FieldCipher, PadsToWholeBlocksAndKeepsAnyText) {
    EXPECT_EQ(encryptField(iv, "").size(), 24u);
    EXPECT_EQ(encryptField(iv, "0123456789abcdef").size(), 44u);
    for (const std::string text : {"", "1357", "Zoë Ångström", "卡片 🙂", "a\nb\tc"}) {
        EXPECT_EQ(decryptField(iv, encryptField(iv, text)), text);
    }
    const std::string withNul{"a\0b", 3};
    EXPECT_EQ(decryptField(iv, encryptField(iv, withNul)), withNul);
}

TEST_F(FieldCipher, EveryFailureIsTheEmptyText) {
    const std::string good = encryptField(iv, "a text of more than one block");
    for (const std::size_t size : {0, 15, 17}) {
        EXPECT_EQ(encryptField(Bytes(size), "text"), "");
        EXPECT_EQ(decryptField(Bytes(size), good), "");
    }
    for (const std::string& bad : {std::string{}, good.substr(0, 20) + "\n" + good.substr(20), good + " ",
                                   good.substr(0, 40), std::string{"AAAA"}, std::string{"not base64"}}) {
        EXPECT_EQ(decryptField(iv, bad), "") << bad;
    }
    config.preSharedKeyByteArray = Bytes(32, 8);
    EXPECT_EQ(decryptField(iv, good), "");
    for (const std::size_t size : {0, 20, 33}) {
        config.preSharedKeyByteArray = Bytes(size);
        EXPECT_EQ(encryptField(iv, "text"), "");
        EXPECT_EQ(decryptField(iv, good), "");
    }
}

TEST_F(FieldCipher, AnotherIvGarblesTheFirstBlockAlone) {
    const std::string text = "0123456789abcdefSuccess";
    Bytes other = iv;
    other[0] ^= 1;
    EXPECT_EQ(decryptField(other, encryptField(iv, text)), "1123456789abcdefSuccess");
}

TEST_F(FieldCipher, BytesThatAreNotUtf8AreTakenAsUtf16) {
    const auto decipherBytes = [this](const std::string& bytes) { return decryptField(iv, encipher(bytes)); };
    EXPECT_EQ(decipherBytes("\xFF\xFE\xE9\x00"s), "é");
    EXPECT_EQ(decipherBytes("\xFE\xFF\x00\xE9\xD8\x3D\xDE\x42"s), "é🙂");
    EXPECT_EQ(decipherBytes("\xE9\x00"s), "é");
    EXPECT_EQ(decipherBytes("\xFF\xFE\x00\xD8"s), "");  // half of a pair
    EXPECT_EQ(decipherBytes("ab\xFF"), "");             // neither
}

}  // namespace
}  // namespace korvane
