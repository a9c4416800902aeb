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

void fingerprint(QPainter& painter, const Theme& theme) {
    disc(painter, theme, theme.primary());
    stroke(painter, theme.primary(), 4.5);
    // Ridges around one another, each from its left foot over the top to its right one.
    struct Ridge {
        double radius, leftFoot, rightFoot;
    };
    for (const auto& [radius, leftFoot, rightFoot] :
         {Ridge{7, 82, 94}, Ridge{16, 92, 98}, Ridge{25, 76, 90}}) {
        QPainterPath ridge(QPointF(64 - radius, leftFoot));
        ridge.lineTo(64 - radius, 60);
        ridge.arcTo(QRectF(64 - radius, 60 - radius, 2 * radius, 2 * radius), 180, -180);
        ridge.lineTo(64 + radius, rightFoot);
        painter.drawPath(ridge);
    }
    constexpr int sixteenths = 16;  // QPainter counts sixteenths of a degree
    painter.drawArc(QRectF(30, 26, 68, 68), 28 * sixteenths, 124 * sixteenths);
    painter.drawLine(QPointF(64, 62), QPointF(64, 98));
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

void eye(QPainter& painter, const QColor& color) {
    QPainterPath lids;
    lids.moveTo(2.5, 12);
    lids.cubicTo(6.5, 4.2, 17.5, 4.2, 21.5, 12);
    lids.cubicTo(17.5, 19.8, 6.5, 19.8, 2.5, 12);
    stroke(painter, color, 1.9);
    painter.drawPath(lids);
    painter.drawEllipse(QPointF(12, 12), 2.9, 2.9);
}

void eyeSlash(QPainter& painter, const QColor& color) {
    eye(painter, color);
    painter.drawLine(QPointF(4.2, 19.8), QPointF(19.8, 4.2));
}

void docOnDoc(QPainter& painter, const QColor& color) {
    stroke(painter, color, 1.9);
    painter.drawRoundedRect(QRectF(8.5, 8.5, 11.5, 12), 2.4, 2.4);
    QPainterPath behind;
    behind.moveTo(5.2, 15.5);
    behind.quadTo(4, 15.3, 4, 13.8);
    behind.lineTo(4, 6);
    behind.quadTo(4, 3.5, 6.5, 3.5);
    behind.lineTo(13, 3.5);
    behind.quadTo(15.2, 3.5, 15.5, 5.2);
    painter.drawPath(behind);
}

void snowflake(QPainter& painter, const QColor& color) {
    stroke(painter, color, 1.4);
    for (int arm = 0; arm < 6; ++arm) {
        painter.save();
        painter.translate(12, 12);
        painter.rotate(arm * 60);
        painter.drawLine(QPointF(0, 0), QPointF(0, -10));
        painter.drawPolyline(QPolygonF({{-2.2, -9}, {0, -6.8}, {2.2, -9}}));
        painter.restore();
    }
}

void contactlessIcon(QPainter& painter, const QColor& color) {
    constexpr int sixteenths = 16;  // QPainter counts sixteenths of a degree
    stroke(painter, color, 2);
    for (const double radius : {4.0, 8.5, 13.0, 17.5}) {
        painter.drawArc(QRectF(3 - radius, 12 - radius, 2 * radius, 2 * radius), -31 * sixteenths,
                        62 * sixteenths);
    }
}

/// A globe of our own over the network's name: nobody's mark.
void mastercardLogo(QPainter& painter, const QColor& color) {
    stroke(painter, color, 1.1);
    const QPointF centre(12, 8.2);
    painter.drawEllipse(centre, 6.6, 6.6);
    painter.drawEllipse(centre, 2.7, 6.6);
    painter.drawLine(QPointF(5.4, 8.2), QPointF(18.6, 8.2));
    QFont font(QStringLiteral("Manrope"));
    font.setWeight(QFont::Bold);
    font.setPixelSize(100);
    QPainterPath name;
    name.addText(0, 0, font, QStringLiteral("mastercard"));
    const QRectF extent = name.boundingRect();
    const double scale = 23.4 / extent.width();
    painter.translate(0.3, 22.6);
    painter.scale(scale, scale);
    painter.translate(-extent.left(), 0);
    fill(painter, color);
    painter.drawPath(name);
}

struct Picture {
    QLatin1StringView name;
    void (*draw)(QPainter&, const Theme&);
};
struct Symbol {
    QLatin1StringView name;
    void (*draw)(QPainter&, const QColor&);
    bool directed = false;  ///< drawn the other way round where lines run from right to left
};

constexpr std::array pictures{
    Picture{QLatin1StringView("caption_exclamation"), captionExclamation},
    Picture{QLatin1StringView("success"), success},
    Picture{QLatin1StringView("cards_activate"), cardsActivate},
    Picture{QLatin1StringView("sms"), sms},
    Picture{QLatin1StringView("fingerprint"), fingerprint},
};
constexpr std::array symbols{
    Symbol{QLatin1StringView("info.circle"), infoCircle},
    Symbol{QLatin1StringView("checkmark.circle"), checkmarkCircle},
    Symbol{QLatin1StringView("xmark.octagon"), xmarkOctagon},
    Symbol{QLatin1StringView("exclamationmark.circle"), exclamationCircle},
    Symbol{QLatin1StringView("back"), back, true},
    Symbol{QLatin1StringView("xmark"), xmark},
    Symbol{QLatin1StringView("spinner"), spinner},
    Symbol{QLatin1StringView("eye"), eye},
    Symbol{QLatin1StringView("eye.slash"), eyeSlash},
    Symbol{QLatin1StringView("doc.on.doc"), docOnDoc},
    Symbol{QLatin1StringView("snowflake"), snowflake},
    Symbol{QLatin1StringView("contactless_icon"), contactlessIcon},
    Symbol{QLatin1StringView("mastercard_logo"), mastercardLogo},
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
    if (theme_) {
        connect(theme_, &Theme::changed, this, &Artwork::redraw);
        connect(theme_, &Theme::mirroredChanged, this, &Artwork::redraw);
    }
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
        if (symbol->directed && theme_ && theme_->mirrored()) painter->scale(-1, 1);
        painter->translate(-symbolSide / 2, -symbolSide / 2);
        symbol->draw(*painter, color_);
    }
}

}  // namespace korvane
