// SPDX-License-Identifier: Apache-2.0
#include "base/Base64.h"

#include <algorithm>
#include <array>

namespace korvane {
namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// The last four characters, which alone may be padded: one byte for each that is not padding, but one.
std::optional<std::size_t> decodeLastGroup(std::string_view group, std::uint8_t* bytes) {
    const std::size_t padding = group[3] != '=' ? 0 : group[2] != '=' ? 1 : 2;
    std::array<char, 4> text{'A', 'A', 'A', 'A'};
    group.copy(text.data(), 4 - padding);
    std::array<std::uint8_t, 3> decoded;
    if (portableTextKernels().decodeBase64(text.data(), text.size(), decoded.data()) == invalidBase64)
        return std::nullopt;
    const std::size_t size = 3 - padding;
    for (std::size_t i = size; i < decoded.size(); ++i) {
        if (decoded[i] != 0) return std::nullopt;  // bits left over
    }
    std::copy_n(decoded.begin(), size, bytes);
    return size;
}

}  // namespace

std::string base64Encode(std::span<const std::uint8_t> bytes) {
    std::string text((bytes.size() + 2) / 3 * 4, '=');
    char* out = text.data();
    std::size_t in = 0;
    const auto put = [&out](std::uint32_t group, std::size_t characters) {
        for (std::size_t i = 0; i < characters; ++i) *out++ = alphabet[group >> (18 - 6 * i) & 63];
    };
    for (; in + 3 <= bytes.size(); in += 3)
        put(static_cast<std::uint32_t>(bytes[in] << 16 | bytes[in + 1] << 8 | bytes[in + 2]), 4);
    const std::size_t rest = bytes.size() - in;
    if (rest == 1) put(static_cast<std::uint32_t>(bytes[in] << 16), 2);
    if (rest == 2) put(static_cast<std::uint32_t>(bytes[in] << 16 | bytes[in + 1] << 8), 3);
    return text;
}

std::optional<std::size_t> base64Decode(std::string_view text, std::uint8_t* bytes,
                                        const TextKernels& kernels) {
    if (text.size() % 4 != 0) return std::nullopt;
    if (text.empty()) return 0;
    std::size_t done = 0;
    const std::size_t whole = text.size() - 4;
    for (const TextKernels* form : {&kernels, &portableTextKernels()}) {
        const std::size_t more = form->decodeBase64(text.data() + done, whole - done, bytes + done / 4 * 3);
        if (more == invalidBase64) return std::nullopt;
        done += more;
    }
    const auto last = decodeLastGroup(text.substr(whole), bytes + whole / 4 * 3);
    if (!last) return std::nullopt;
    return whole / 4 * 3 + *last;
}

std::optional<std::vector<std::uint8_t>> base64Decode(std::string_view text) {
    std::vector<std::uint8_t> bytes(base64Room(text));
    const auto size = base64Decode(text, bytes.data());
    if (!size) return std::nullopt;
    bytes.resize(*size);
    return bytes;
}

}  // namespace korvane
