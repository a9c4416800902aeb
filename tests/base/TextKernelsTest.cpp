// SPDX-License-Identifier: Apache-2.0
#include "base/TextKernels.h"

#include <gtest/gtest.h>

#include <random>

#include "base/Base64.h"
#include "base/Text.h"

namespace korvane::testing {
namespace {

std::mt19937 random{11};

std::string randomText(std::size_t size, std::string_view from) {
    std::string text(size, ' ');
    for (char& c : text) c = from[random() % from.size()];
    return text;
}

class TextKernelForms : public ::testing::Test {
  protected:
    const TextKernels& portable = portableTextKernels();
};

TEST_F(TextKernelForms, WriteAndReadBase64Alike) {
    for (const TextKernels& form : runnableTextKernels()) {
        for (std::size_t size = 0; size <= 300; ++size) {
            std::vector<std::uint8_t> bytes(size);
            for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
            const std::string text = base64Encode(bytes, portable);
            EXPECT_EQ(base64Encode(bytes, form), text) << form.name;
            // Exact room, so that a sanitizer tells of a byte too many.
            std::vector<std::uint8_t> read(base64Room(text));
            EXPECT_EQ(base64Decode(text, read.data(), form), size) << form.name;
            EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), read.begin())) << form.name << size;
        }
    }
}

TEST_F(TextKernelForms, RefuseEachWrongByteAtEachPlace) {
    const std::string good = base64Encode(std::vector<std::uint8_t>(192, 0xA7), portable);
    std::vector<std::uint8_t> bytes(base64Room(good));
    for (const TextKernels& form : runnableTextKernels()) {
        for (std::size_t place = 0; place < good.size(); ++place) {
            for (int byte = 0; byte < 256; ++byte) {
                std::string text = good;
                text[place] = static_cast<char>(byte);
                const auto wanted = base64Decode(text, bytes.data(), portable);
                ASSERT_EQ(base64Decode(text, bytes.data(), form), wanted)
                    << form.name << byte << '@' << place;
            }
        }
    }
}

TEST_F(TextKernelForms, StopAtTheByteThatTheyLookFor) {
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
