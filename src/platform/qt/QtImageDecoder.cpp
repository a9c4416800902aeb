// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/QtImageDecoder.h"

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QImageReader>

namespace korvane {

bool QtImageDecoder::isImage(std::span<const std::byte> bytes) const {
    QByteArray data = QByteArray::fromRawData(reinterpret_cast<const char*>(bytes.data()),
                                              static_cast<qsizetype>(bytes.size()));
    QBuffer buffer(&data);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    // All of it: the header of a picture that was cut short is as good as any.
    return !reader.read().isNull();
}

}  // namespace korvane
