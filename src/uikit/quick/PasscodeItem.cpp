// SPDX-License-Identifier: Apache-2.0
#include "uikit/quick/PasscodeItem.h"

#include <QClipboard>
#include <QCursor>
#include <QGuiApplication>
#include <QInputMethod>
#include <QPainter>
#include <QPointer>
#include <QQuickWindow>
#include <QSet>
#include <algorithm>
#include <cmath>
#include <string>

#include "base/Secret.h"
#include "uikit/quick/ItemAccessible.h"

namespace korvane {
namespace {

bool isTyping(const QKeyEvent& event) {
    constexpr auto commands = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    return !(event.modifiers() & commands) && !event.text().isEmpty() && event.text().front().isPrint();
}

bool isDigit(const QKeyEvent& event) {
    return isTyping(event) && event.text().front().isDigit();
}

bool isOurs(const QKeyEvent& event) {
    return isTyping(event) || event.matches(QKeySequence::Paste) || event.key() == Qt::Key_Backspace;
}

/// Keeps back the release of each key whose press the boxes took. By then they may be gone, or take nothing:
/// the last digit of a code submits it.
class TakenKeys : public QObject {
  public:
    static void add(int key) {
        static QPointer<TakenKeys> taken;
        if (!taken) taken = new TakenKeys;
        taken->keys_.insert(key);
        qGuiApp->installEventFilter(taken);  // what is installed last is asked first
    }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::KeyRelease) return false;
        const auto& released = *static_cast<QKeyEvent*>(event);
        return released.isAutoRepeat() ? keys_.contains(released.key()) : keys_.remove(released.key());
    }

  private:
    TakenKeys() : QObject(qGuiApp) {}

    QSet<int> keys_;
};

}  // namespace

PasscodeItem::PasscodeItem(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
    setActiveFocusOnTab(true);
    setFlag(ItemAcceptsInputMethod);
    setAcceptedMouseButtons(Qt::LeftButton);
    setCursor(Qt::IBeamCursor);
    ItemAccessible::install();
    qGuiApp->installEventFilter(this);
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
    const double height = screen_ && screen_->boxes() && screen_->boxes()->size > 4 ? 64 : 72;
    setImplicitHeight(height * (theme_ ? std::sqrt(theme_->textScale()) : 1));
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
    const bool usable = takesInput();
    const bool refused = !screen_->message().isEmpty();
    const QColor ink = usable ? theme_->inputText() : theme_->disabledText();
    const double dot = 6 * theme_->textScale();

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
            const Qt::InputMethodHints hints =
                Qt::ImhDigitsOnly | Qt::ImhSensitiveData | Qt::ImhNoPredictiveText;
            return static_cast<int>((hints | Qt::ImhHiddenText).toInt());
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

bool PasscodeItem::eventFilter(QObject* target, QEvent* event) {
    // What is installed last is asked first. This event comes right before each press of a key, and the
    // bridge installs itself anew whenever somebody listens.
    if (event->type() == QEvent::ShortcutOverride) qGuiApp->installEventFilter(this);

    const bool key = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
    if (!key || (target != window() && target != QGuiApplication::focusWindow())) return false;
    const auto& typed = *static_cast<QKeyEvent*>(event);
    if (!isForBoxes(typed)) return false;
    if (event->type() == QEvent::KeyPress) {
        TakenKeys::add(typed.key());
        enter(typed.text());
    }
    event->accept();
    return true;
}

bool PasscodeItem::isForBoxes(const QKeyEvent& event) const {
    if (!isEnabled() || !isVisible() || !window()) return false;
    if (hasActiveFocus()) return isTyping(event);
    const QQuickItem* const focused = window()->activeFocusItem();
    return page_ && focused && (focused == page_ || page_->isAncestorOf(focused)) && isDigit(event);
}

void PasscodeItem::keyPressEvent(QKeyEvent* event) {
    if (!screen_) return event->ignore();
    if (event->matches(QKeySequence::Paste)) return enter(QGuiApplication::clipboard()->text());
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
        enter(event->commitString());
    } else if (event->replacementLength() > 0) {
        screen_->deleteBackward();
    }
    event->accept();
}

bool PasscodeItem::takesInput() const {
    const ControlModel* const control = screen_ ? screen_->passcode() : nullptr;
    return control && control->usable();
}

void PasscodeItem::enter(QString text) {
    if (!screen_ || !takesInput()) return;
    forceActiveFocus(Qt::OtherFocusReason);
    std::string typed;
    text = std::move(text).trimmed();  // what is copied often brings a line end along
    // Digits of other scripts are what some keyboards give for the same keys; blanks and dashes come in many
    // widths.
    for (QChar& letter : text) {
        if (letter.isDigit()) letter = QChar(u'0' + letter.digitValue());
        if (letter.isSpace()) letter = u' ';
        if (letter.category() == QChar::Punctuation_Dash) letter = u'-';
    }
    QByteArray bytes = text.toUtf8();
    typed.assign(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    bytes.fill('\0');
    text.fill(QChar());
    screen_->insertText(typed);
    wipe(typed);
}

void PasscodeItem::erase() {
    if (!screen_ || !takesInput()) return;
    for (int left = screen_->boxes() ? screen_->boxes()->filled : 0; left > 0; --left)
        screen_->deleteBackward();
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
