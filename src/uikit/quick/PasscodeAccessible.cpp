// SPDX-License-Identifier: Apache-2.0
#include "uikit/quick/PasscodeAccessible.h"

#include "uikit/quick/PasscodeItem.h"

namespace korvane {

PasscodeAccessible::PasscodeAccessible(PasscodeItem* item) : ItemAccessible(item) {}

PasscodeItem& PasscodeAccessible::boxes() const {
    return *static_cast<PasscodeItem*>(item());
}

QAccessible::State PasscodeAccessible::state() const {
    QAccessible::State state = ItemAccessible::state();
    state.editable = true;
    state.focusable = true;
    state.focused = boxes().hasActiveFocus();
    state.disabled = !boxes().takesInput();
    return state;
}

QString PasscodeAccessible::text(QAccessible::Text kind) const {
    return kind == QAccessible::Name && boxes().screen() ? boxes().screen()->passcodeDescription()
                                                         : QString();
}

void* PasscodeAccessible::interface_cast(QAccessible::InterfaceType type) {
    if (type == QAccessible::TextInterface) return static_cast<QAccessibleTextInterface*>(this);
    if (type == QAccessible::EditableTextInterface)
        return static_cast<QAccessibleEditableTextInterface*>(this);
    return ItemAccessible::interface_cast(type);
}

void PasscodeAccessible::doAction(const QString& name) {
    if (actionNames().contains(name)) focus();
}

void PasscodeAccessible::insertText(int, const QString& text) {
    boxes().enter(text);
}

void PasscodeAccessible::deleteText(int, int) {
    boxes().erase();
}

void PasscodeAccessible::replaceText(int, int, const QString& text) {
    boxes().erase();
    boxes().enter(text);
}

}  // namespace korvane
