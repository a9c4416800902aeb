// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "uikit/quick/ItemAccessible.h"

namespace korvane {

class PasscodeItem;

/// The digit boxes: one editable text that tells its purpose and how many digits are in, and takes text, but
/// never gives one. Dictation and other tools that enter text can fill it; nobody can read it.
class PasscodeAccessible final : public ItemAccessible,
                                 public QAccessibleTextInterface,
                                 public QAccessibleEditableTextInterface {
  public:
    explicit PasscodeAccessible(PasscodeItem* item);

    QAccessible::Role role() const override { return QAccessible::EditableText; }
    QAccessible::State state() const override;
    QString text(QAccessible::Text kind) const override;
    void* interface_cast(QAccessible::InterfaceType type) override;

    QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }
    void doAction(const QString& name) override;

    // A text that stays empty: the bridge to AT-SPI needs one where text can be entered.
    void selection(int, int* start, int* end) const override { *start = *end = 0; }
    int selectionCount() const override { return 0; }
    void addSelection(int, int) override {}
    void removeSelection(int) override {}
    void setSelection(int, int, int) override {}
    int cursorPosition() const override { return 0; }
    void setCursorPosition(int) override {}
    QString text(int, int) const override { return {}; }
    int characterCount() const override { return 0; }
    QRect characterRect(int) const override { return {}; }
    int offsetAtPoint(const QPoint&) const override { return 0; }
    void scrollToSubstring(int, int) override {}
    QString attributes(int, int* start, int* end) const override { return *start = *end = 0, QString(); }

    // Where in the text does not matter: there is none. What is inserted is typed, or pasted when it is more.
    void insertText(int, const QString& text) override;
    void deleteText(int, int) override;
    void replaceText(int, int, const QString& text) override;

  private:
    PasscodeItem& boxes() const;
};

}  // namespace korvane
