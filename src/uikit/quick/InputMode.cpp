// SPDX-License-Identifier: Apache-2.0
#include "uikit/quick/InputMode.h"

#include <QEvent>
#include <QGuiApplication>

#include "uikit/quick/ItemAccessible.h"

namespace korvane {

InputMode::InputMode(QObject* parent) : QObject(parent) {
    qGuiApp->installEventFilter(this);
    ItemAccessible::install();
    QAccessible::installActivationObserver(this);
}

InputMode::~InputMode() {
    QAccessible::removeActivationObserver(this);
}

bool InputMode::eventFilter(QObject*, QEvent* event) {
    const bool key = event->type() == QEvent::KeyPress;
    const bool pointer = event->type() == QEvent::MouseButtonPress || event->type() == QEvent::TouchBegin;
    if ((key || pointer) && keys_ != key) {
        keys_ = key;
        emit changed();
    }
    return false;
}

void InputMode::accessibilityActiveChanged(bool) {
    emit changed();
}

}  // namespace korvane
