// SPDX-License-Identifier: Apache-2.0
#include "uikit/quick/PasscodeItem.h"

#include <QClipboard>
#include <QCursor>
#include <QGuiApplication>
#include <QInputMethod>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <string>

#include "base/Secret.h"

namespace korvane {
namespace {

bool isTyping(const QKeyEvent& event) {
    constexpr auto commands = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    return !(event.modifiers() & commands) && !event.text().isEmpty() && event.text().front().isPrint();
}

bool isOurs(const QKeyEvent& event) {
    return isTyping(event) || event.matches(QKeySequence::Paste) || event.key() == Qt::Key_Backspace;
}

}  // namespace

PasscodeItem::PasscodeItem(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
    setActiveFocusOnTab(true);
    setFlag(ItemAcceptsInputMethod);
    setAcceptedMouseButtons(Qt::LeftButton);
    setCursor(Qt::IBeamCursor);
}

void PasscodeItem::setScreen(ScreenModel* screen) {
    if (screen_ == screen) return;
    if (screen_) disconnect(screen_, nullptr, this, nullptr);
    screen_ = screen;
    if (screen_) {
        connect(screen_, &ScreenModel::passcodeChanged, this, &PasscodeItem::redraw);
        connect(screen_, &ScreenModel::messageChanged, this, &PasscodeItem::redraw);
        connect(screen_, &ScreenModel::spinnerChanged, this, &PasscodeItem::redraw);
        connect(screen_, &ScreenModel::entryWanted, this, [this] { forceActiveFocus(Qt::OtherFocusReason); });
    }
    emit screenChanged();
    redraw();
}

void PasscodeItem::componentComplete() {
    QQuickPaintedItem::componentComplete();
    theme_ = Theme::of(this);
    if (theme_) {
        connect(theme_, &Theme::changed, this, &PasscodeItem::redraw);
        connect(theme_, &Theme::mirroredChanged, this, &PasscodeItem::redraw);
    }
    redraw();
}

void PasscodeItem::redraw() {
    setImplicitHeight(screen_ && screen_->boxes() && screen_->boxes()->size > 4 ? 64 : 72);
    updateInputMethod(Qt::ImQueryInput | Qt::ImHints);
    update();
}

QRectF PasscodeItem::boxRect(int index, int size) const {
    const double gap = size > 4 ? 8 : 16;
    const double step = std::min((width() + gap) / size, 96 + gap);
    // Digits run from left to right in every language; boxes that leave room leave it where lines end.
    const double start = theme_ && theme_->mirrored() ? width() + gap - step * size : 0;
    const double left = std::round(start + index * step);
    return {left, 0, std::round(start + index * step + step - gap) - left, height()};
}

void PasscodeItem::paint(QPainter* painter) {
    if (!screen_ || !screen_->boxes() || !theme_) return;
    const PasscodeBoxes& boxes = *screen_->boxes();
    const ControlModel* const control = screen_->passcode();
    const bool usable = control && control->usable();
    const bool refused = !screen_->message().isEmpty();
    const QColor ink = usable ? theme_->inputText() : theme_->disabledText();
    const double dot = 6;

    painter->setRenderHint(QPainter::Antialiasing);
    painter->setFont(theme_->digits(28));
    for (int i = 0; i < boxes.size; ++i) {
        const bool focused = usable && hasActiveFocus() && i == boxes.firstResponderIndex;
        const double line = focused || refused ? 2 : 1;
        const QRectF outside = boxRect(i, boxes.size);
        const QRectF box = outside.adjusted(line / 2, line / 2, -line / 2, -line / 2);
        const double radius = std::min({theme_->textFieldRadius(), box.height() / 2, box.width() / 2});
        painter->setPen(QPen(focused   ? theme_->primary()
                             : refused ? theme_->errorText()
                             : usable  ? theme_->inputBorder()
                                       : theme_->outline(),
                             line));
        painter->setBrush(usable ? theme_->surface() : theme_->disabledFill());
        painter->drawRoundedRect(box, radius, radius);
        if (i >= boxes.filled) continue;

        if (boxes.secure) {
            painter->setPen(Qt::NoPen);
            painter->setBrush(ink);
            painter->drawEllipse(outside.center(), dot, dot);
        } else {
            painter->setPen(ink);
            painter->drawText(outside, Qt::AlignCenter,
                              QString(QLatin1Char(boxes.visibleDigits[static_cast<std::size_t>(i)])));
        }
    }
}

QVariant PasscodeItem::inputMethodQuery(Qt::InputMethodQuery query) const {
    const std::optional<PasscodeBoxes> none;
    const std::optional<PasscodeBoxes>& boxes = screen_ ? screen_->boxes() : none;
    switch (query) {
        case Qt::ImEnabled:
            return boxes.has_value();
        case Qt::ImHints: {
            Qt::InputMethodHints hints = Qt::ImhDigitsOnly | Qt::ImhSensitiveData | Qt::ImhNoPredictiveText;
            hints.setFlag(Qt::ImhHiddenText, !boxes || boxes->secure);
            return static_cast<int>(hints.toInt());
        }
        case Qt::ImCursorRectangle:
            return boxes ? boxRect(boxes->firstResponderIndex, boxes->size) : QRectF();
        case Qt::ImEnterKeyType:
            return Qt::EnterKeyDone;
        // An input method learns nothing of what was typed.
        case Qt::ImSurroundingText:
        case Qt::ImCurrentSelection:
        case Qt::ImTextBeforeCursor:
        case Qt::ImTextAfterCursor:
            return QString();
        case Qt::ImCursorPosition:
        case Qt::ImAnchorPosition:
        case Qt::ImAbsolutePosition:
            return 0;
        default:
            return QQuickPaintedItem::inputMethodQuery(query);
    }
}

bool PasscodeItem::event(QEvent* event) {
    // A host's one-key shortcuts must not eat digits.
    if (event->type() == QEvent::ShortcutOverride && isOurs(*static_cast<QKeyEvent*>(event))) {
        event->accept();
        return true;
    }
    return QQuickPaintedItem::event(event);
}

void PasscodeItem::keyPressEvent(QKeyEvent* event) {
    if (!screen_) return event->ignore();
    if (event->matches(QKeySequence::Paste)) return insert(QGuiApplication::clipboard()->text());
    if (isTyping(*event)) return insert(event->text());
    switch (event->key()) {
        case Qt::Key_Backspace:
            return screen_->deleteBackward();
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return screen_->submit();
        default:
            return event->ignore();
    }
}

void PasscodeItem::inputMethodEvent(QInputMethodEvent* event) {
    if (!screen_) return event->ignore();
    if (!event->commitString().isEmpty()) {
        insert(event->commitString());
    } else if (event->replacementLength() > 0) {
        screen_->deleteBackward();
    }
    event->accept();
}

void PasscodeItem::insert(QString text) {
    std::string typed;
    text = std::move(text).trimmed();  // what is copied often brings a line end along
    // Digits of other scripts are what some keyboards give for the same keys.
    for (QChar& letter : text) {
        if (letter.isDigit()) letter = QChar(u'0' + letter.digitValue());
    }
    QByteArray bytes = text.toUtf8();
    typed.assign(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    bytes.fill('\0');
    text.fill(QChar());
    screen_->insertText(typed);
    wipe(typed);
}

void PasscodeItem::mousePressEvent(QMouseEvent* event) {
    forceActiveFocus(Qt::MouseFocusReason);
    QGuiApplication::inputMethod()->show();
    event->accept();
}

void PasscodeItem::focusInEvent(QFocusEvent* event) {
    QQuickPaintedItem::focusInEvent(event);
    update();
}

void PasscodeItem::focusOutEvent(QFocusEvent* event) {
    QQuickPaintedItem::focusOutEvent(event);
    update();
}

}  // namespace korvane
