// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace korvane::sandbox {

/// A picture of a card of the type, as a PNG file (ISO/IEC 15948): 8 bits a channel with alpha, in the
/// proportions of ID-1 (ISO/IEC 7810), its corners transparent. Each type has its own colours. Empty when the
/// compressor fails.
std::vector<std::uint8_t> cardImagePng(std::string_view type);

}  // namespace korvane::sandbox
