// SPDX-License-Identifier: Apache-2.0
#include "base/Base64.h"

#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <random>

namespace korvane::testing {
namespace {

std::string byOpenSsl(const std::vector<std::uint8_t>& bytes) {
    std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');  // and a NUL
    const int size = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), bytes.data(),
                                     static_cast<int>(bytes.size()));
    text.resize(static_cast<std::size_t>(size));
    return text;
}

TEST(Base64, WritesAndReadsEveryLengthAsOpenSslDoes) {
    std::mt19937 random(7);
    for (std::size_t size = 0; size <= 300; ++size) {
        std::vector<std::uint8_t> bytes(size);
        for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
        const std::string text = base64Encode(bytes);
        EXPECT_EQ(text, byOpenSsl(bytes));
        EXPECT_EQ(base64Decode(text), bytes);
    }
}

TEST(Base64, ReadsNothingButTheOneRightText) {
    EXPECT_EQ(base64Decode("AAA="), (std::vector<std::uint8_t>{0, 0}));
    for (const std::string_view text : {
             "A",        "AA",   "AAA",    "AAAAA",                      // length
             "====",     "A===", "=AAA",   "AA=A",  "A=A=", "AAAA====",  // padding
             "AA==AAAA",                                                 // padding before the end
             "AAA\n",    " AAA", "AAAA\n", "AA A",  "AAA-", "AAA_",      // white space and other alphabets
             "AB==",     "AP==", "AAB=",   "AAD=",                       // trailing bits
         }) {
        EXPECT_EQ(base64Decode(text), std::nullopt) << text;
    }
    EXPECT_EQ(base64Decode(std::string_view("AA\0=", 4)), std::nullopt);
    // Each byte outside of the alphabet, at each place of a group.
    for (int byte = 0; byte < 256; ++byte) {
        const auto c = static_cast<char>(byte);
        const bool known = std::isalnum(byte) && byte < 128;
        for (std::size_t place = 0; place < 4; ++place) {
            std::string text = "AAAAAAAA";
            text[4 + place] = c;
            const bool wanted = known || c == '+' || c == '/';
            // A padding character is right at the end alone, where the bits left over are zero.
            EXPECT_EQ(base64Decode(text).has_value(), wanted || (c == '=' && place == 3))
                << byte << " at " << place;
        }
    }
}

}  // namespace
}  // namespace korvane::testing
