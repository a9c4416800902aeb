// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Initialize.h>
#include <korvane/platform/ImageDecoder.h>

#include <memory>
#include <string>

namespace korvane {

struct CardPicture {
    std::shared_ptr<const ImageData> image;       ///< null: there is none that can be drawn
    std::shared_ptr<const DecodedImage> decoded;  ///< as `ImageDecoder` read it; null like `image`
    std::string failure;                          ///< why not, as a message id; empty when there is one
};

}  // namespace korvane
