// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>

namespace korvane {

enum class ImageFormat { png, jpeg, other };

/// The format by the first bytes: PNG (ISO/IEC 15948, 5.2) or JPEG (ITU-T T.81, B.1.1). A signature with
/// nothing behind it is no picture.
inline ImageFormat imageFormat(std::span<const std::byte> bytes) {
    const auto startsWith = [bytes](std::initializer_list<std::uint8_t> signature) {
        return bytes.size() > signature.size() &&
               std::equal(signature.begin(), signature.end(), bytes.begin(),
                          [](std::uint8_t one, std::byte other) { return std::byte{one} == other; });
    };
    if (startsWith({0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A})) return ImageFormat::png;
    return startsWith({0xFF, 0xD8, 0xFF}) ? ImageFormat::jpeg : ImageFormat::other;
}

}  // namespace korvane
