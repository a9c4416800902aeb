// SPDX-License-Identifier: Apache-2.0
#include "transport/FieldCipher.h"

#include <cstdio>
#include <fstream>
#include <random>

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

std::string toHex(const Bytes& bytes) {
    std::string hex;
    for (const std::uint8_t byte : bytes)
        (hex += "0123456789abcdef"[byte >> 4]) += "0123456789abcdef"[byte & 15];
    return hex;
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
        EXPECT_EQ(toHex(enciphered).substr(0, 128), cipher);
        EXPECT_EQ(enciphered.size(), 80u);
        EXPECT_EQ(aesCbcDecrypt(fromHex(key), iv, enciphered), plain);
    }
}

class FieldCipher : public ServiceFixture {};

TEST_F(FieldCipher, AgreesWithTheCommandLineTool) {
    const std::string file = testing::TempDir() + "korvane-field-cipher";
    const auto openssl = [&file](const std::string& arguments, const std::string& input) {
        std::ofstream{file, std::ios::binary} << input;
        std::FILE* const pipe =
            popen(("openssl enc -base64 -A -in '" + file + "' " + arguments).c_str(), "r");
        std::string output;
        for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) output += static_cast<char>(c);
        EXPECT_EQ(pclose(pipe), 0);
        return output;
    };
    std::mt19937 random{20240607};
    for (const std::size_t keySize : {16, 24, 32}) {
        config.preSharedKeyByteArray.resize(keySize);
        for (const std::size_t length : {0, 1, 4, 15, 16, 17, 1000}) {
            for (std::uint8_t& byte : config.preSharedKeyByteArray)
                byte = static_cast<std::uint8_t>(random());
            std::string text(length, ' ');
            for (char& c : text) c = static_cast<char>(' ' + random() % 95);
            const std::string arguments = "-aes-" + std::to_string(keySize * 8) + "-cbc -iv " + toHex(iv) +
                                          " -K " + toHex(config.preSharedKeyByteArray);
            EXPECT_EQ(openssl(arguments, text), encryptField(iv, text));
            EXPECT_EQ(openssl(arguments + " -d", encryptField(iv, text)), text);
        }
    }
    std::remove(file.c_str());
}

TEST_F(FieldCipher, KeepsAnyTextAndGarblesUnderAnotherIv) {
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

}  // namespace
}  // namespace korvane
