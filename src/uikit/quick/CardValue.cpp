// SPDX-License-Identifier: Apache-2.0
#include "uikit/quick/CardValue.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QQuickWindow>
#include <cmath>
#include <string_view>

namespace korvane {
namespace {

bool isNumber(std::string_view value) {
    return value.find_first_not_of("0123456789#") == std::string_view::npos;
}

/// A card number as it is embossed: groups of four.
QString grouped(std::string_view value) {
    if (value.size() < 8 || !isNumber(value)) return QString::fromUtf8(value.data(), qsizetype(value.size()));
    QString groups;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (i > 0 && i % 4 == 0) groups += u' ';
        groups += QLatin1Char(value[i]);
    }
    return groups;
}

}  // namespace

CardValue::CardValue(QQuickItem* parent) : QQuickPaintedItem(parent) {
    ItemAccessible::install();
    setAntialiasing(true);
}

void CardValue::setDetail(DetailModel* detail) {
    if (detail_ == detail) return;
    if (detail_) disconnect(detail_, nullptr, this, nullptr);
    detail_ = detail;
    if (detail_) connect(detail_, &DetailModel::changed, this, &CardValue::redraw);
    emit detailChanged();
    redraw();
}

void CardValue::setMirrored(bool mirrored) {
    if (mirrored_ == mirrored) return;
    mirrored_ = mirrored;
    emit mirroredChanged();
    update();
}

QString CardValue::spokenDigits() const {
    if (!detail_ || !detail_->revealed()) return {};
    QString digits;
    for (const char digit : detail_->value()) {
        if (!digits.isEmpty()) digits += u' ';
        digits += QLatin1Char(digit);
    }
    return digits;
}

void CardValue::componentComplete() {
    QQuickPaintedItem::componentComplete();
    theme_ = Theme::of(this);
    if (theme_) connect(theme_, &Theme::changed, this, &CardValue::redraw);
    redraw();
}

void CardValue::geometryChange(const QRectF& now, const QRectF& before) {
    QQuickPaintedItem::geometryChange(now, before);
    if (now.width() != before.width()) redraw();
}

QString CardValue::words() const {
    if (!detail_) return {};
    // What is missing is said in words.
    return detail_->value().empty() && !detail_->copyable() ? detail_->spokenValue()
                                                            : grouped(detail_->value());
}

QFont CardValue::font() const {
    QFont font = theme_->body();
    // So that the mask of a card number stands on one line of a small phone, as the number does.
    if (detail_->masked()) font.setLetterSpacing(QFont::PercentageSpacing, 90);
    return font;
}

int CardValue::flags() const {
    return Qt::TextWordWrap | Qt::TextWrapAnywhere | Qt::AlignVCenter |
           (mirrored_ ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignAbsolute;
}

void CardValue::redraw() {
    const bool reachable = detail_ && detail_->revealed();
    setActiveFocusOnTab(reachable);
    if (!reachable && hasActiveFocus()) nextItemInFocusChain(false)->forceActiveFocus(Qt::BacktabFocusReason);
    if (theme_ && detail_ && width() > 0) {
        QString text = words();
        const QFontMetricsF metrics(font());
        setImplicitHeight(
            std::ceil(metrics.boundingRect(QRectF(0, 0, width(), 10000), flags(), text).height()));
        text.fill(u'\0');
    }
    update();
}

void CardValue::paint(QPainter* painter) {
    if (!theme_ || !detail_) return;
    const bool inClear = !detail_->masked() && detail_->copyable();
    QString text = words();
    painter->setFont(font());
    painter->setPen(inClear ? theme_->colorOnBackground() : theme_->hintText());
    // Digits stand from left to right in every language.
    painter->setLayoutDirection(isNumber(detail_->value()) ? Qt::LeftToRight : Qt::LayoutDirectionAuto);
    painter->drawText(QRectF(0, 0, width(), height()), flags(), text);
    text.fill(u'\0');
}

QString CardValueAccessible::text(QAccessible::Text kind) const {
    return kind == QAccessible::Name ? value().spokenDigits() : QString();
}

QAccessible::State CardValueAccessible::state() const {
    QAccessible::State state = ItemAccessible::state();
    state.readOnly = true;
    state.focusable = value().activeFocusOnTab();
    state.focused = value().hasActiveFocus();
    state.invisible = state.invisible || value().spokenDigits().isEmpty();
    return state;
}

const CardValue& CardValueAccessible::value() const {
    return *static_cast<CardValue*>(item());
}

}  // namespace korvane
