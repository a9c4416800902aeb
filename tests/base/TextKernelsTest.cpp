// SPDX-License-Identifier: Apache-2.0
#include "base/TextKernels.h"

#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <random>

#include "base/Base64.h"
#include "base/Text.h"

namespace korvane::testing {
namespace {

using namespace std::string_literals;

std::mt19937 random{11};

std::string randomText(std::size_t size, std::string_view from) {
    std::string text(size, ' ');
    for (char& c : text) c = from[random() % from.size()];
    return text;
}

std::string byOpenSsl(const std::vector<std::uint8_t>& bytes) {
    std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');  // and a NUL
    const int size = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), bytes.data(),
                                     static_cast<int>(bytes.size()));
    text.resize(static_cast<std::size_t>(size));
    return text;
}

/// Whether the form takes the text. The room is exact, so that a sanitizer tells of a byte too many.
bool takes(const TextKernels& form, const std::string& text) {
    std::vector<std::uint8_t> read(base64Room(text));
    return base64Decode(text, read.data(), form).has_value();
}

TEST(TextKernels, WriteAndReadBase64OfEveryLengthAsOpenSslDoes) {
    for (const TextKernels& form : runnableTextKernels()) {
        for (std::size_t size = 0; size <= 300; ++size) {
            std::vector<std::uint8_t> bytes(size);
            for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
            const std::string text = base64Encode(bytes, form);
            EXPECT_EQ(text, byOpenSsl(bytes)) << form.name;
            std::vector<std::uint8_t> read(base64Room(text));
            EXPECT_EQ(base64Decode(text, read.data(), form), size) << form.name;
            read.resize(size);
            EXPECT_EQ(read, bytes) << form.name;
        }
    }
}

TEST(TextKernels, ReadNothingButTheOneRightText) {
    for (const TextKernels& form : runnableTextKernels()) {
        for (const std::string& text : {
                 "A"s,        "AA"s,    "AAA"s,    "AAAAA"s,                        // length
                 "===="s,     "A==="s,  "=AAA"s,   "AA=A"s,  "A=A="s, "AAAA===="s,  // padding
                 "AA==AAAA"s, "AA\0="s,                                             // before the end
                 "AAA\n"s,    " AAA"s,  "AAAA\n"s, "AA A"s,                         // white space
                 "AB=="s,     "AP=="s,  "AAB="s,   "AAD="s,                         // trailing bits
             }) {
            EXPECT_FALSE(takes(form, text)) << form.name << ": " << text;
        }
        // Every byte at every place. Padding is right at the end alone, where the bits left over are zero.
        const std::string good = base64Encode(std::vector<std::uint8_t>(192), form);
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

}  // namespace
}  // namespace korvane::testing
