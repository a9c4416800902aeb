// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/QtImageDecoder.h"

#include <korvane/platform/MainQueue.h>

#include <utility>

#include "platform/qt/PictureReader.h"

namespace korvane {

QtImageDecoder::QtImageDecoder(std::shared_ptr<MainQueue> mainQueue) : mainQueue_(std::move(mainQueue)) {
    thread_.setMaxThreadCount(1);
}

QtImageDecoder::~QtImageDecoder() {
    thread_.clear();
    thread_.waitForDone();
}

std::unique_ptr<ImageDecoding> QtImageDecoder::decode(std::shared_ptr<const std::vector<std::byte>> bytes,
                                                      Done done) {
    auto [reply, handle] = replies_.add(std::move(done));
    // The queue outlives the thread: a reference of the thread's own could be the last one.
    thread_.start([&queue = *mainQueue_, reply = std::move(reply), bytes = std::move(bytes)] {
        if (!reply->isWanted()) return;
        QImage read = readPicture(*bytes);
        if (!reply->isWanted()) return;
        std::shared_ptr<const DecodedImage> image;
        if (!read.isNull()) image = std::make_shared<const QtDecodedImage>(std::move(read));
        queue.post([reply, image = std::move(image)]() mutable { reply->run(std::move(image)); });
    });
    return std::move(handle);
}

}  // namespace korvane
