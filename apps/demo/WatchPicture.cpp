// SPDX-License-Identifier: Apache-2.0
#include "WatchPicture.h"

#include <QBuffer>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>

korvane::ImageData watchPicture() {
    QImage picture(1024, 646, QImage::Format_RGB32);  // as wide for its height as a card
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient fall(0, 0, 1024, 646);
    fall.setColorAt(0, QColor(0x2B, 0x3A, 0x4A));
    fall.setColorAt(1, QColor(0x12, 0x18, 0x20));
    painter.fillRect(picture.rect(), fall);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x3C, 0x51, 0x66));
    painter.drawRect(QRect(412, 0, 200, 646));  // the strap
    painter.setBrush(QColor(0xC9, 0xD3, 0xDC));
    painter.drawRoundedRect(QRect(372, 173, 280, 300), 84, 84);
    painter.drawRoundedRect(QRect(646, 280, 22, 74), 11, 11);
    painter.setBrush(QColor(0x0B, 0x0F, 0x14));
    painter.drawRoundedRect(QRect(390, 191, 244, 264), 70, 70);
    painter.setPen(QPen(QColor(0xE8, 0xF0, 0xF6), 12, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(512, 323, 512, 246);
    painter.drawLine(512, 323, 566, 350);
    painter.end();

    QByteArray file;
    QBuffer buffer(&file);
    picture.save(&buffer, "PNG");
    const auto* const first = reinterpret_cast<const std::byte*>(file.constData());
    return {first, first + file.size()};
}
