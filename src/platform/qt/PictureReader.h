// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>
#include <QSize>
#include <cstddef>
#include <span>

namespace korvane {

/// Bounds on a picture, checked against its header before a pixel is decoded.
struct PictureLimits {
    static constexpr int side = 4096;                  ///< pixels
    static constexpr qint64 area = 16'000'000;         ///< pixels
    static constexpr int ratio = 4;                    ///< longer side to shorter side
    static constexpr int scans = 64;                   ///< of a progressive JPEG, which has about ten
    static constexpr QSize drawn = QSize(2048, 1292);  ///< a card on the densest screen, in pixels
};

/// Decodes a PNG or JPEG, chosen by its signature and by Qt's reader of that name: no other plug-in sees the
/// bytes. A picture outside the limits, damaged or cut short gives a null image. A picture that is larger
/// than needed to cover `PictureLimits::drawn` comes smaller. Any thread.
QImage readPicture(std::span<const std::byte> bytes);

}  // namespace korvane
