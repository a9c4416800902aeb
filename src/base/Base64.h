// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korvane {

/// Standard base64 with padding and without line breaks (RFC 4648, section 4). Any thread.
std::string base64Encode(std::span<const std::uint8_t> bytes);

/// Strict decoding: the length is a multiple of four, padding stands at the end only, no other character
/// occurs, and the bits that padding leaves over are zero. Anything else gives none. "" decodes to no bytes.
/// OpenSSL's decoder is not used because it skips white space and accepts loose padding.
std::optional<std::vector<std::uint8_t>> base64Decode(std::string_view text);

}  // namespace korvane
