// SPDX-License-Identifier: Apache-2.0
#include "uikit/quick/Artwork.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace korvane {
namespace {

// Pictures are drawn on a square of 128, symbols on one of 24.
constexpr double pictureSide = 128;
constexpr double symbolSide = 24;

void fill(QPainter& painter, const QColor& color) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
}

void stroke(QPainter& painter, const QColor& color, double width) {
    painter.setPen(QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
}

void disc(QPainter& painter, const Theme& theme, const QColor& tone) {
    fill(painter, mixed(theme.background(), tone, 0.10));
    painter.drawEllipse(QPointF(64, 64), 62, 62);
}

void check(QPainter& painter, QPointF centre, double size, const QColor& color, double width) {
    stroke(painter, color, width);
    painter.drawPolyline(
        QPolygonF({centre + QPointF(-0.50, 0.02) * size, centre + QPointF(-0.14, 0.38) * size,
                   centre + QPointF(0.52, -0.34) * size}));
}

void captionExclamation(QPainter& painter, const Theme& theme) {
    disc(painter, theme, theme.error());
    QPainterPath bubble;
    bubble.addRoundedRect(QRectF(28, 30, 72, 56), 16, 16);
    QPainterPath tail;
    tail.moveTo(48, 80);
    tail.lineTo(48, 102);
    tail.lineTo(72, 82);
    tail.closeSubpath();
    fill(painter, theme.error());
    painter.drawPath(bubble.united(tail));
    stroke(painter, theme.onError(), 7);
    painter.drawLine(QPointF(64, 44), QPointF(64, 59));
    fill(painter, theme.onError());
    painter.drawEllipse(QPointF(64, 72), 4.5, 4.5);
}

void success(QPainter& painter, const Theme& theme) {
    disc(painter, theme, theme.success());
    fill(painter, mixed(theme.background(), theme.success(), 0.22));
    painter.drawEllipse(QPointF(64, 64), 48, 48);
    fill(painter, theme.success());
    painter.drawEllipse(QPointF(64, 64), 34, 34);
    check(painter, QPointF(64, 64), 30, theme.background(), 6);
}

void card(QPainter& painter, const QColor& face, const QColor& detail) {
    fill(painter, face);
    painter.drawRoundedRect(QRectF(-34, -22, 68, 44), 6, 6);
    fill(painter, detail);
    painter.drawRoundedRect(QRectF(-26, -12, 13, 10), 2.5, 2.5);
    painter.drawRoundedRect(QRectF(-26, 9, 26, 4), 2, 2);
    painter.drawRoundedRect(QRectF(14, 9, 12, 4), 2, 2);
}

void cardsActivate(QPainter& painter, const Theme& theme) {
    disc(painter, theme, theme.primary());
    painter.save();
    painter.translate(68, 52);
    painter.rotate(-14);
    card(painter, mixed(theme.background(), theme.primary(), 0.42),
         mixed(theme.background(), theme.primary(), 0.18));
    painter.restore();
    painter.save();
    painter.translate(60, 70);
    card(painter, theme.primary(), mixed(theme.primary(), theme.colorOnPrimary(), 0.72));
    painter.restore();
    fill(painter, theme.background());
    painter.drawEllipse(QPointF(93, 90), 18, 18);
    fill(painter, theme.success());
    painter.drawEllipse(QPointF(93, 90), 14.5, 14.5);
    check(painter, QPointF(93, 90), 13, theme.background(), 3.5);
}

void sms(QPainter& painter, const Theme& theme) {
    disc(painter, theme, theme.primary());
    const QColor body = mixed(theme.background(), theme.primary(), 0.42);
    fill(painter, body);
    painter.drawRoundedRect(QRectF(36, 24, 46, 82), 9, 9);
    fill(painter, theme.background());
    painter.drawRoundedRect(QRectF(40, 31, 38, 63), 4, 4);
    painter.drawEllipse(QPointF(59, 100), 2.6, 2.6);

    QPainterPath bubble;
    bubble.addRoundedRect(QRectF(52, 42, 54, 34), 11, 11);
    QPainterPath tail;
    tail.moveTo(66, 70);
    tail.lineTo(66, 86);
    tail.lineTo(84, 72);
    tail.closeSubpath();
    const QPainterPath message = bubble.united(tail);
    painter.setPen(QPen(theme.background(), 6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(theme.background());
    painter.drawPath(message);
    fill(painter, theme.primary());
    painter.drawPath(message);
    fill(painter, theme.colorOnPrimary());
    for (const double x : {66.0, 79.0, 92.0}) painter.drawEllipse(QPointF(x, 59), 3.6, 3.6);
}

void circled(QPainter& painter, const QColor& color) {
    stroke(painter, color, 2);
    painter.drawEllipse(QPointF(12, 12), 9, 9);
}

void cross(QPainter& painter, double reach) {
    painter.drawLine(QPointF(12 - reach, 12 - reach), QPointF(12 + reach, 12 + reach));
    painter.drawLine(QPointF(12 - reach, 12 + reach), QPointF(12 + reach, 12 - reach));
}

void infoCircle(QPainter& painter, const QColor& color) {
    circled(painter, color);
    painter.drawLine(QPointF(12, 11.5), QPointF(12, 16));
    fill(painter, color);
    painter.drawEllipse(QPointF(12, 8), 1.3, 1.3);
}

void exclamationCircle(QPainter& painter, const QColor& color) {
    circled(painter, color);
    painter.drawLine(QPointF(12, 8), QPointF(12, 12.5));
    fill(painter, color);
    painter.drawEllipse(QPointF(12, 16), 1.3, 1.3);
}

void checkmarkCircle(QPainter& painter, const QColor& color) {
    circled(painter, color);
    check(painter, QPointF(12, 12), 7.5, color, 2);
}

void xmarkOctagon(QPainter& painter, const QColor& color) {
    QPolygonF octagon;
    for (int i = 0; i < 8; ++i) {
        const double angle = (i + 0.5) * std::numbers::pi / 4;
        octagon << QPointF(12 + 9.6 * std::cos(angle), 12 + 9.6 * std::sin(angle));
    }
    stroke(painter, color, 2);
    painter.drawPolygon(octagon);
    cross(painter, 3.2);
}

void back(QPainter& painter, const QColor& color) {
    stroke(painter, color, 2.2);
    painter.drawPolyline(QPolygonF({{14.5, 5}, {7.5, 12}, {14.5, 19}}));
}

void xmark(QPainter& painter, const QColor& color) {
    stroke(painter, color, 2.2);
    cross(painter, 6);
}

void spinner(QPainter& painter, const QColor& color) {
    constexpr int sixteenths = 16;  // QPainter counts sixteenths of a degree
    QColor track = color;
    track.setAlphaF(color.alphaF() * 0.2F);
    stroke(painter, track, 2.4);
    painter.drawEllipse(QPointF(12, 12), 9.5, 9.5);
    stroke(painter, color, 2.4);
    painter.drawArc(QRectF(2.5, 2.5, 19, 19), 0, 100 * sixteenths);
}

struct Picture {
    QLatin1StringView name;
    void (*draw)(QPainter&, const Theme&);
};
struct Symbol {
    QLatin1StringView name;
    void (*draw)(QPainter&, const QColor&);
};

constexpr std::array pictures{
    Picture{QLatin1StringView("caption_exclamation"), captionExclamation},
    Picture{QLatin1StringView("success"), success},
    Picture{QLatin1StringView("cards_activate"), cardsActivate},
    Picture{QLatin1StringView("sms"), sms},
};
constexpr std::array symbols{
    Symbol{QLatin1StringView("info.circle"), infoCircle},
    Symbol{QLatin1StringView("checkmark.circle"), checkmarkCircle},
    Symbol{QLatin1StringView("xmark.octagon"), xmarkOctagon},
    Symbol{QLatin1StringView("exclamationmark.circle"), exclamationCircle},
    Symbol{QLatin1StringView("back"), back},
    Symbol{QLatin1StringView("xmark"), xmark},
    Symbol{QLatin1StringView("spinner"), spinner},
};

}  // namespace

Artwork::Artwork(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
}

void Artwork::setName(const QString& name) {
    if (name_ == name) return;
    name_ = name;
    emit nameChanged();
    redraw();
}

void Artwork::setColor(const QColor& color) {
    if (color_ == color) return;
    color_ = color;
    emit colorChanged();
    redraw();
}

void Artwork::setAngle(double angle) {
    if (angle_ == angle) return;
    angle_ = angle;
    emit angleChanged();
    redraw();
}

void Artwork::componentComplete() {
    QQuickPaintedItem::componentComplete();
    theme_ = Theme::of(this);
    if (theme_) connect(theme_, &Theme::changed, this, &Artwork::redraw);
}

void Artwork::paint(QPainter* painter) {
    painter->setRenderHint(QPainter::Antialiasing);
    const double side = std::min(width(), height());
    const auto named = [this](const auto& asset) { return asset.name == name_; };
    if (const auto* const picture = std::ranges::find_if(pictures, named); picture != pictures.end()) {
        painter->scale(side / pictureSide, side / pictureSide);
        if (theme_) picture->draw(*painter, *theme_);
    } else if (const auto* const symbol = std::ranges::find_if(symbols, named); symbol != symbols.end()) {
        painter->scale(side / symbolSide, side / symbolSide);
        painter->translate(symbolSide / 2, symbolSide / 2);
        painter->rotate(angle_);
        painter->translate(-symbolSide / 2, -symbolSide / 2);
        symbol->draw(*painter, color_);
    }
}

}  // namespace korvane
