// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/ImageDecoder.h>

#include <QImage>

namespace korvane {

struct QtDecodedImage final : DecodedImage {
    explicit QtDecodedImage(QImage read) : image(std::move(read)) {}

    const QImage image;
};

/// Decodes with Qt's image plug-ins. A picture that needs more memory than Qt's limit for images is none.
class QtImageDecoder final : public ImageDecoder {
  public:
    std::shared_ptr<const DecodedImage> decode(std::span<const std::byte> bytes) const override;
};

}  // namespace korvane
