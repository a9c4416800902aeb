// SPDX-License-Identifier: Apache-2.0
#include "uikit/quick/CardFaceItem.h"

#include <QLinearGradient>
#include <QPainter>
#include <QQuickWindow>
#include <cmath>

namespace korvane {
namespace {

// ISO/IEC 7810, ID-1, in mm.
constexpr double idWidth = 85.60;
constexpr double idHeight = 53.98;
constexpr double idRadius = 3.18;

/// `picture` over the whole of `size`, what sticks out cut off on both sides alike. Cropped before it is
/// scaled: nothing larger than the two is ever made.
QImage covering(const QImage& picture, QSize size) {
    QRect part({}, size.scaled(picture.size(), Qt::KeepAspectRatio).expandedTo({1, 1}));
    part.moveTo((picture.width() - part.width()) / 2, (picture.height() - part.height()) / 2);
    return picture.copy(part)
        .scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        .convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

QImage withoutColors(const QImage& picture) {
    QImage grey = picture.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < grey.height(); ++y) {
        auto* const line = reinterpret_cast<QRgb*>(grey.scanLine(y));
        for (int x = 0; x < grey.width(); ++x) {
            const int tone = qGray(line[x]);
            line[x] = qRgba(tone, tone, tone, qAlpha(line[x]));
        }
    }
    return grey.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

QColor inkOn(const QImage& part) {
    const QColor mean = part.scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).pixelColor(0, 0);
    return contrast(mean, Qt::white) >= 3 ? Qt::white : QColor(0x1A, 0x1A, 0x1A);
}

}  // namespace

CardFaceItem::CardFaceItem(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
}

void CardFaceItem::setCard(CardModel* card) {
    if (card_ == card) return;
    if (card_) disconnect(card_, nullptr, this, nullptr);
    card_ = card;
    if (card_) connect(card_, &CardModel::changed, this, &CardFaceItem::readCard);
    emit cardChanged();
    readCard();
}

double CardFaceItem::radius() const {
    return width() * idRadius / idWidth;
}

void CardFaceItem::componentComplete() {
    QQuickPaintedItem::componentComplete();
    theme_ = Theme::of(this);
    if (theme_) connect(theme_, &Theme::changed, this, &QQuickItem::polish);
    readCard();
}

void CardFaceItem::geometryChange(const QRectF& now, const QRectF& before) {
    QQuickPaintedItem::geometryChange(now, before);
    if (now.width() != before.width()) setImplicitHeight(std::round(now.width() * idHeight / idWidth));
    if (now.size() != before.size()) polish();
}

void CardFaceItem::itemChange(ItemChange change, const ItemChangeData& data) {
    QQuickPaintedItem::itemChange(change, data);
    if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange) polish();
}

void CardFaceItem::readCard() {
    if (!isComponentComplete()) return;
    picture_ = card_ ? card_->picture() : QImage();
    polish();
}

/// Once before a frame, however often its size changed while the page was laid out.
void CardFaceItem::updatePolish() {
    if (!isComponentComplete() || width() <= 0 || height() <= 0) return;
    const double ratio = window() ? window()->effectiveDevicePixelRatio() : 1;
    const QSize size = (QSizeF(width(), height()) * ratio).toSize();
    face_ = picture_.isNull() ? placeholderFace(size) : covering(picture_, size);
    const QRect corner(size.width() * 3 / 4, 0, size.width() / 5, size.height() / 3);
    upperInk_ = inkOn(face_.copy(corner));
    lowerInk_ = inkOn(face_.copy(corner.translated(0, size.height() * 2 / 3)));
    if (card_ && card_->frozen()) face_ = withoutColors(face_);
    emit drawn();
    update();
}

QImage CardFaceItem::placeholderFace(QSize size) const {
    QImage face(size, QImage::Format_ARGB32_Premultiplied);
    const QColor base = theme_ ? theme_->primary() : QColor(Qt::darkGray);
    QPainter painter(&face);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient fall(0, 0, size.width(), size.height());
    fall.setColorAt(0, mixed(base, Qt::white, 0.10));
    fall.setColorAt(1, mixed(base, Qt::black, 0.42));
    painter.fillRect(face.rect(), fall);

    // Two wide arcs, and the contacts.
    const double unit = size.width() / idWidth;
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 255, 255, 16));
    painter.drawEllipse(QPointF(70, 58) * unit, 44 * unit, 44 * unit);
    painter.drawEllipse(QPointF(84, 66) * unit, 44 * unit, 44 * unit);
    const QRectF chip(QPointF(9, 19) * unit, QSizeF(11.5, 8.8) * unit);
    painter.setBrush(QColor(0xE6, 0xCF, 0x96));
    painter.drawRoundedRect(chip, 1.6 * unit, 1.6 * unit);
    painter.setPen(QPen(QColor(0x9C, 0x83, 0x4A), 0.35 * unit));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(chip.adjusted(3.6 * unit, 2.4 * unit, -3.6 * unit, -2.4 * unit), unit, unit);
    const double middle = chip.center().y();
    painter.drawLine(QPointF(chip.left(), middle), QPointF(chip.left() + 3.6 * unit, middle));
    painter.drawLine(QPointF(chip.right() - 3.6 * unit, middle), QPointF(chip.right(), middle));
    const double centre = chip.center().x();
    painter.drawLine(QPointF(centre, chip.top()), QPointF(centre, chip.top() + 2.4 * unit));
    painter.drawLine(QPointF(centre, chip.bottom() - 2.4 * unit), QPointF(centre, chip.bottom()));
    return face;
}

void CardFaceItem::paint(QPainter* painter) {
    if (face_.isNull()) return;
    painter->setRenderHint(QPainter::Antialiasing);
    // As a brush: a clip would have no smooth edge.
    QBrush brush(face_);
    brush.setTransform(QTransform::fromScale(width() / face_.width(), height() / face_.height()));
    painter->setPen(Qt::NoPen);
    painter->setBrush(brush);
    painter->drawRoundedRect(QRectF(0, 0, width(), height()), radius(), radius());
}

}  // namespace korvane
