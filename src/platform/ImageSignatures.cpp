// SPDX-License-Identifier: Apache-2.0
#include <korvane/platform/ImageDecoder.h>
#include <korvane/platform/MainQueue.h>

#include <utility>

#include "platform/ImageFormat.h"
#include "platform/ImageReplies.h"

namespace korvane {

ImageSignatures::ImageSignatures(std::shared_ptr<MainQueue> mainQueue)
    : mainQueue_(std::move(mainQueue)), replies_(std::make_unique<ImageReplies>()) {}

ImageSignatures::~ImageSignatures() = default;

std::unique_ptr<ImageDecoding> ImageSignatures::decode(std::shared_ptr<const std::vector<std::byte>> bytes,
                                                       Done done) {
    auto [reply, handle] = replies_->add(std::move(done));
    const bool isPicture = imageFormat(*bytes) != ImageFormat::other;
    mainQueue_->post([reply = std::move(reply), isPicture] {
        reply->run(isPicture ? std::make_shared<const DecodedImage>() : nullptr);
    });
    return std::move(handle);
}

}  // namespace korvane
