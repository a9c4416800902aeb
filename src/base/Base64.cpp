// SPDX-License-Identifier: Apache-2.0
#include "base/Base64.h"

#include <algorithm>
#include <array>

#include "base/Secret.h"

namespace korvane {
namespace {

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

std::string base64Encode(std::span<const std::uint8_t> bytes, const TextKernels& kernels) {
    std::string text((bytes.size() + 2) / 3 * 4, '=');
    const std::size_t done = kernels.encodeBase64(bytes.data(), bytes.size(), text.data());
    if (done == bytes.size()) return text;
    std::array<std::uint8_t, 3> group{};
    const std::size_t rest = bytes.size() - done;
    std::copy_n(bytes.data() + done, rest, group.begin());
    std::array<char, 4> last;
    portableTextKernels().encodeBase64(group.data(), group.size(), last.data());
    std::copy_n(last.begin(), rest + 1, text.data() + done / 3 * 4);
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
    if (!size) {
        wipe(bytes);  // it may be a key, but for one character
        return std::nullopt;
    }
    bytes.resize(*size);
    return bytes;
}

}  // namespace korvane
