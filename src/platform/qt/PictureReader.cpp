// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/PictureReader.h"

#include <QBuffer>
#include <QImageReader>
#include <algorithm>

#include "platform/ImageFormat.h"
#include "platform/qt/PictureFile.h"

namespace korvane {
namespace {

bool isWithinLimits(QSize size) {
    if (size.isEmpty()) return false;
    const auto [shorter, longer] = std::minmax({size.width(), size.height()});
    return longer <= PictureLimits::side && longer <= shorter * PictureLimits::ratio &&
           qint64{longer} * shorter <= PictureLimits::area;
}

}  // namespace

QImage readPicture(std::span<const std::byte> bytes) {
    const ImageFormat format = imageFormat(bytes);
    if (format == ImageFormat::other) return {};
    const bool isPng = format == ImageFormat::png;
    QByteArray file = isPng ? pngPixels(bytes) : jpegPixels(bytes, PictureLimits::scans);
    QBuffer buffer(&file);
    QImageReader reader(&buffer, isPng ? "png" : "jpeg");
    reader.setAutoDetectImageFormat(false);
    reader.setDecideFormatFromContent(false);
    const QSize size = reader.size();
    if (!isWithinLimits(size)) return {};
    const QSize enough = size.scaled(PictureLimits::drawn, Qt::KeepAspectRatioByExpanding);
    if (enough.width() < size.width()) reader.setScaledSize(enough);
    // All of it: a picture that was cut short has a good header.
    QImage image = reader.read();
    if (image.isNull()) return {};
    image.convertTo(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    return image;
}

}  // namespace korvane
