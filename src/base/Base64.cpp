// SPDX-License-Identifier: Apache-2.0
#include "base/Base64.h"

#include <array>

namespace korvane {
namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t invalid = 0xFF;

constexpr std::array<std::uint8_t, 256> makeValues() {
    std::array<std::uint8_t, 256> values{};
    values.fill(invalid);
    for (std::size_t i = 0; i < alphabet.size(); ++i) {
        values[static_cast<unsigned char>(alphabet[i])] = static_cast<std::uint8_t>(i);
    }
    return values;
}

constexpr std::array<std::uint8_t, 256> values = makeValues();

std::uint32_t valueOf(char character) {
    return values[static_cast<unsigned char>(character)];
}

}  // namespace

std::string base64Encode(std::span<const std::uint8_t> bytes) {
    std::string text((bytes.size() + 2) / 3 * 4, '=');
    std::size_t out = 0;
    std::size_t in = 0;
    for (; in + 3 <= bytes.size(); in += 3) {
        const std::uint32_t group =
            static_cast<std::uint32_t>(bytes[in] << 16 | bytes[in + 1] << 8 | bytes[in + 2]);
        for (int shift = 18; shift >= 0; shift -= 6) text[out++] = alphabet[group >> shift & 63];
    }
    if (const std::size_t rest = bytes.size() - in; rest > 0) {
        const std::uint32_t group =
            static_cast<std::uint32_t>(bytes[in] << 16 | (rest == 2 ? bytes[in + 1] << 8 : 0));
        text[out++] = alphabet[group >> 18 & 63];
        text[out++] = alphabet[group >> 12 & 63];
        if (rest == 2) text[out++] = alphabet[group >> 6 & 63];
    }
    return text;
}

std::optional<std::vector<std::uint8_t>> base64Decode(std::string_view text) {
    if (text.size() % 4 != 0) return std::nullopt;
    std::size_t padding = 0;
    while (padding < 2 && padding < text.size() && text[text.size() - 1 - padding] == '=') ++padding;

    std::vector<std::uint8_t> bytes;
    bytes.reserve(text.size() / 4 * 3);
    const std::size_t characters = text.size() - padding;
    std::uint32_t group = 0;
    std::uint32_t seen = 0;  // bit 7 is set for good once an invalid character came by
    for (std::size_t i = 0; i < characters; ++i) {
        const std::uint32_t value = valueOf(text[i]);
        seen |= value;
        group = group << 6 | (value & 63);
        if (i % 4 == 3) {
            bytes.push_back(static_cast<std::uint8_t>(group >> 16));
            bytes.push_back(static_cast<std::uint8_t>(group >> 8));
            bytes.push_back(static_cast<std::uint8_t>(group));
        }
    }
    if (seen & 0x80) return std::nullopt;
    if (padding == 1) {
        if (group & 0x3) return std::nullopt;
        bytes.push_back(static_cast<std::uint8_t>(group >> 10));
        bytes.push_back(static_cast<std::uint8_t>(group >> 2));
    } else if (padding == 2) {
        if (group & 0xF) return std::nullopt;
        bytes.push_back(static_cast<std::uint8_t>(group >> 4));
    }
    return bytes;
}

}  // namespace korvane
