// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <cstddef>
#include <span>

namespace korvane {

// Files reduced to what their pixels need. Text, profiles and the like are never drawn, but libraries decode
// them with the header: compressed text in a PNG of 8 MB grows to 8 GB. Any thread.

/// The chunks of a PNG that carry its pixels, up to IEND (ISO/IEC 15948, 5.3 and 11.2); empty when the file
/// is cut short. `png` starts with the signature.
QByteArray pngPixels(std::span<const std::byte> png);

/// A JPEG without comments and application data other than JFIF and Adobe (ITU-T T.81, B.1.1); empty when
/// no scan begins, or more than `maxScans` do. `jpeg` starts with the signature.
QByteArray jpegPixels(std::span<const std::byte> jpeg, int maxScans);

}  // namespace korvane
