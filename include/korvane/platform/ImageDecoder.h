// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

namespace korvane {

class ImageReplies;
class MainQueue;

/// A decoded picture. A toolkit's decoder keeps the pixels in a class derived from this one and finds them
/// again in `CardFace::decoded`.
struct DecodedImage {
    virtual ~DecodedImage() = default;
};

/// A decoding under way. Releasing it cancels: its callback never runs afterwards. Main thread.
class ImageDecoding {
  public:
    virtual ~ImageDecoding() = default;
};

/// Decodes PNG and JPEG pictures, and refuses everything else. The bytes are hostile: they may come from a
/// card service that is not the bank's.
class ImageDecoder {
  public:
    /// Receives the picture, or null when it was refused.
    using Done = std::function<void(std::shared_ptr<const DecodedImage>)>;

    virtual ~ImageDecoder() = default;

    /// Starts to decode `bytes` (not null). `done` runs at most once, on the main queue, never from inside
    /// this call. Main thread; the caller owns the handle. Handles may outlive the decoder: then their
    /// callbacks never run.
    virtual std::unique_ptr<ImageDecoding> decode(std::shared_ptr<const std::vector<std::byte>> bytes,
                                                  Done done) = 0;
};

/// Compares the signature alone, for devices without a decoder: PNG (ISO/IEC 15948, 5.2) or JPEG (the
/// markers SOI and the first byte of the next one, ITU-T T.81, B.1.1). It reads no header: code that draws
/// from the bytes must bound width, height and area by itself. Main thread.
class KORVANE_API ImageSignatures final : public ImageDecoder {
  public:
    /// @param mainQueue  where callbacks run
    explicit ImageSignatures(std::shared_ptr<MainQueue> mainQueue);
    ~ImageSignatures() override;

    std::unique_ptr<ImageDecoding> decode(std::shared_ptr<const std::vector<std::byte>> bytes,
                                          Done done) override;

  private:
    std::shared_ptr<MainQueue> mainQueue_;
    std::unique_ptr<ImageReplies> replies_;
};

}  // namespace korvane
