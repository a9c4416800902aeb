// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/ImageDecoder.h>

#include <atomic>
#include <memory>
#include <utility>
#include <vector>

namespace korvane {

/// The callbacks that an image decoder still owes; they go with the decoder. Main thread, except where noted.
class ImageReplies {
  public:
    /// One callback. The decoder's work may hold it on any thread: only the main thread touches the function.
    class Reply {
      public:
        explicit Reply(ImageDecoder::Done done) : done_(std::move(done)) {}

        /// Any thread: false once the handle or the decoder went, so that work may stop early.
        bool isWanted() const { return isWanted_; }
        void run(std::shared_ptr<const DecodedImage> image) {
            if (const auto done = take()) done(std::move(image));
        }
        void drop() { take(); }

      private:
        ImageDecoder::Done take() {
            isWanted_ = false;
            return std::exchange(done_, nullptr);
        }

        std::atomic<bool> isWanted_ = true;
        ImageDecoder::Done done_;
    };

    ImageReplies() = default;
    ImageReplies(const ImageReplies&) = delete;
    ~ImageReplies() {
        for (const auto& each : replies_) {
            if (const auto reply = each.lock()) reply->drop();
        }
    }

    /// The callback, and the handle that cancels it.
    std::pair<std::shared_ptr<Reply>, std::unique_ptr<ImageDecoding>> add(ImageDecoder::Done done) {
        std::erase_if(replies_, [](const auto& each) { return each.expired(); });
        auto reply = std::make_shared<Reply>(std::move(done));
        replies_.push_back(reply);
        return {reply, std::make_unique<Handle>(reply)};
    }

  private:
    struct Handle final : ImageDecoding {
        explicit Handle(std::shared_ptr<Reply> owed) : reply(std::move(owed)) {}
        ~Handle() override { reply->drop(); }

        const std::shared_ptr<Reply> reply;
    };

    std::vector<std::weak_ptr<Reply>> replies_;
};

}  // namespace korvane
