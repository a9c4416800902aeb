// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/QtImageDecoder.h"

#include <QBuffer>
#include <QByteArray>
#include <QImageReader>

namespace korvane {

std::shared_ptr<const DecodedImage> QtImageDecoder::decode(std::span<const std::byte> bytes) const {
    QByteArray data = QByteArray::fromRawData(reinterpret_cast<const char*>(bytes.data()),
                                              static_cast<qsizetype>(bytes.size()));
    QBuffer buffer(&data);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    // All of it: the header of a picture that was cut short is as good as any.
    QImage image = reader.read();
    if (image.isNull()) return nullptr;
    return std::make_shared<QtDecodedImage>(std::move(image));
}

}  // namespace korvane
