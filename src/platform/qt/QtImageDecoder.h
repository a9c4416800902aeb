// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/ImageDecoder.h>

#include <QImage>
#include <QThreadPool>
#include <memory>
#include <vector>

#include "platform/ImageReplies.h"

namespace korvane {

struct QtDecodedImage final : DecodedImage {
    explicit QtDecodedImage(QImage read) : image(std::move(read)) {}

    const QImage image;
};

/// Decodes one picture after the other on one thread of its own, as `readPicture` does. Make and destroy it
/// on the main thread; the destructor waits for the picture that is being decoded.
class QtImageDecoder final : public ImageDecoder {
  public:
    /// @param mainQueue  where callbacks run
    explicit QtImageDecoder(std::shared_ptr<MainQueue> mainQueue);
    ~QtImageDecoder() override;

    std::unique_ptr<ImageDecoding> decode(std::shared_ptr<const std::vector<std::byte>> bytes,
                                          Done done) override;

  private:
    const std::shared_ptr<MainQueue> mainQueue_;
    ImageReplies replies_;
    QThreadPool thread_;
};

}  // namespace korvane
