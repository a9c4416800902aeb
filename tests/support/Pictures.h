// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zlib.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace korvane::testing {

// Pictures put together byte by byte, as no writer of pictures would (ISO/IEC 15948, 5 and 11).

inline std::string bigEndian(std::uint32_t number) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(number >> shift & 0xFF);
    return bytes;
}

/// As zlib does it best (RFC 1950): zeros shrink to a thousandth.
inline std::string deflated(std::string_view bytes) {
    std::string result(compressBound(bytes.size()), '\0');
    uLongf size = result.size();
    compress2(reinterpret_cast<Bytef*>(result.data()), &size, reinterpret_cast<const Bytef*>(bytes.data()),
              bytes.size(), Z_BEST_COMPRESSION);
    result.resize(size);
    return result;
}

inline std::string pngChunk(const std::string& type, std::string_view content) {
    const std::string body = type + std::string{content};
    const auto sum = crc32(0, reinterpret_cast<const Bytef*>(body.data()), static_cast<uInt>(body.size()));
    return bigEndian(static_cast<std::uint32_t>(content.size())) + body +
           bigEndian(static_cast<std::uint32_t>(sum));
}

/// What a pixel of a PNG is made of.
struct PngKind {
    std::uint8_t depth = 8;   ///< bits a sample
    std::uint8_t colour = 0;  ///< 0 grey, 2 RGB, 3 palette, 6 RGBA
    bool interlaced = false;
};

/// A PNG of that size whose rows are `pixels`, or all zero. `extras` stand before them, whole chunks.
/// Pixels that are too few for its header make a small file of any size.
inline std::string png(std::uint32_t width, std::uint32_t height, PngKind kind = {},
                       std::string_view pixels = std::string_view("\0\0", 2),
                       const std::string& extras = {}) {
    const std::string header = bigEndian(width) + bigEndian(height) + static_cast<char>(kind.depth) +
                               static_cast<char>(kind.colour) + '\0' + '\0' + (kind.interlaced ? '\1' : '\0');
    return "\x89PNG\r\n\x1A\n" + pngChunk("IHDR", header) + extras + pngChunk("IDAT", deflated(pixels)) +
           pngChunk("IEND", {});
}

/// All of its pixels, zero each.
inline std::string blankPng(std::uint32_t width, std::uint32_t height, PngKind kind = {}) {
    const std::size_t samples = kind.colour == 6 ? 4 : kind.colour == 2 ? 3 : 1;
    const std::size_t row = 1 + (width * samples * kind.depth + 7) / 8;
    return png(width, height, kind, std::string(row * height + (kind.interlaced ? 16 * height : 0), '\0'));
}

}  // namespace korvane::testing
