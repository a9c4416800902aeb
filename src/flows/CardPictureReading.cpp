// SPDX-License-Identifier: Apache-2.0
#include "flows/CardPictureReading.h"

#include <korvane/platform/Ports.h>

#include <utility>

#include "base/Base64.h"
#include "sdk/JourneyState.h"

namespace korvane {
namespace {

class Reading : public std::enable_shared_from_this<Reading> {
  public:
    Reading(StatePtr state, std::function<void()> done) : state_(std::move(state)), done_(std::move(done)) {}

    void start() {
        const auto& hosts = state_->sdk.wearableImage;
        if (state_->currentCardType != eKorvaneCardType::wearable || !hosts) return decodeServicePicture();
        decode(std::make_shared<const ImageData>(*hosts), &Reading::decodeServicePicture);
    }

  private:
    void decodeServicePicture() {
        const std::string& base64 = state_->decCardImage;
        if (base64.empty()) return fail("errors.decodedimgstrempty.failed");
        const auto image = std::make_shared<ImageData>(base64Room(base64));
        const auto size = base64Decode(base64, reinterpret_cast<std::uint8_t*>(image->data()));
        if (!size) return fail("errors.base64todata.failed");
        image->resize(*size);
        decode(image, &Reading::refuse);
    }

    /// Runs `refused` when `image` cannot be decoded.
    void decode(std::shared_ptr<const ImageData> image, void (Reading::*refused)()) {
        // This object owns the handle, so the callback never outlives it.
        decoding_ = ports().imageDecoder->decode(
            image, [this, image, refused](std::shared_ptr<const DecodedImage> decoded) {
                const auto self = shared_from_this();
                if (!decoded) return (this->*refused)();
                finish({image, std::move(decoded), {}});
            });
    }

    void refuse() { finish({nullptr, nullptr, "errors.datatoimage.failed"}); }
    void fail(const char* messageId) {
        ports().mainQueue->post([weak = weak_from_this(), messageId] {
            if (const auto self = weak.lock()) self->finish({nullptr, nullptr, messageId});
        });
    }
    void finish(CardPicture picture) {
        state_->cardPicture = std::move(picture);
        std::exchange(done_, nullptr)();
    }

    const StatePtr state_;
    std::function<void()> done_;
    std::unique_ptr<ImageDecoding> decoding_;
};

}  // namespace

Handle readCardPicture(StatePtr state, std::function<void()> done) {
    const auto reading = std::make_shared<Reading>(std::move(state), std::move(done));
    reading->start();
    return reading;
}

}  // namespace korvane
