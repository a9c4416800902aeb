// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <span>

namespace korvane {

/// A picture that was read. A toolkit's decoder keeps its pixels in a class of its own that is derived from
/// this one, and finds them again in `CardFace::decoded`: nothing is read twice.
struct DecodedImage {
    virtual ~DecodedImage() = default;
};

/// Tells pictures from other bytes; drawing them is the toolkit's.
class ImageDecoder {
  public:
    virtual ~ImageDecoder() = default;

    /// `bytes`, an encoded image, as the toolkit can draw it; null when it cannot. Main thread.
    virtual std::shared_ptr<const DecodedImage> decode(std::span<const std::byte> bytes) const = 0;
};

/// Looks at the first bytes alone, for devices without a decoder: PNG (ISO/IEC 15948, 5.2) or JPEG (the
/// markers SOI and the first byte of the next one, ITU-T T.81, B.1.1).
class ImageSignatures final : public ImageDecoder {
  public:
    std::shared_ptr<const DecodedImage> decode(std::span<const std::byte> bytes) const override {
        constexpr std::array png{std::byte{0x89}, std::byte{'P'},  std::byte{'N'},  std::byte{'G'},
                                 std::byte{0x0D}, std::byte{0x0A}, std::byte{0x1A}, std::byte{0x0A}};
        constexpr std::array jpeg{std::byte{0xFF}, std::byte{0xD8}, std::byte{0xFF}};
        if (!startsWith(bytes, png) && !startsWith(bytes, jpeg)) return nullptr;
        return std::make_shared<DecodedImage>();
    }

  private:
    static bool startsWith(std::span<const std::byte> bytes, std::span<const std::byte> signature) {
        return bytes.size() > signature.size() &&
               std::equal(signature.begin(), signature.end(), bytes.begin());
    }
};

}  // namespace korvane
