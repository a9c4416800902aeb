// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/TextKernels.h"

namespace korvane {

/// Standard base64 with padding and without line breaks (RFC 4648, section 4). Any thread.
std::string base64Encode(std::span<const std::uint8_t> bytes, const TextKernels& kernels = textKernels());

/// Strict decoding: the length is a multiple of four, padding stands at the end only, no other character
/// occurs, and the bits that padding leaves over are zero. Anything else gives none. "" decodes to no bytes.
/// OpenSSL's decoder is not used because it skips white space and accepts loose padding.
std::optional<std::vector<std::uint8_t>> base64Decode(std::string_view text);

/// The same into `bytes`, which has `base64Room(text)` and is not where `text` is. Gives the number of bytes;
/// none leaves anything in them.
std::optional<std::size_t> base64Decode(std::string_view text, std::uint8_t* bytes,
                                        const TextKernels& kernels = textKernels());

/// As many bytes as `text` could decode to.
constexpr std::size_t base64Room(std::string_view text) {
    return text.size() / 4 * 3;
}

}  // namespace korvane
