// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/ImageDecoder.h>

namespace korvane {

/// Decodes with Qt's image plug-ins. A picture that needs more memory than Qt's limit for images is none.
class QtImageDecoder final : public ImageDecoder {
  public:
    bool isImage(std::span<const std::byte> bytes) const override;
};

}  // namespace korvane
