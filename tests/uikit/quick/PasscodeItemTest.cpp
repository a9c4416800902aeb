// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>

#include "tests/uikit/quick/QuickFixture.h"

namespace korvane {
namespace {

class PasscodeItemTest : public QuickFixture {
  protected:
    PasscodeItemTest() { toPinEntry(); }
    QQuickItem* boxes() const { return find("sdk.setpin.input"); }
};

TEST_F(PasscodeItemTest, TakesDigitsOneByOneAndWholeCodesPastedOrCommitted) {
    EXPECT_EQ(focused(), "sdk.setpin.input") << "a person can type at once";
    walk({"type ٣8a6 .", "key Return > EnterCardPINView"});  // the key for 3 of an Arabic keyboard
    for (const auto& [copied, held] : {std::pair{"PIN 8642", 3}, {"8 6-42\n", 4}}) {
        QGuiApplication::clipboard()->setText(copied);
        key(Qt::Key_V, "v", Qt::ControlModifier);
        EXPECT_EQ(filled(), held);
    }
    for (int i = 0; i < 4; ++i) key(Qt::Key_Backspace);
    QInputMethodEvent composing("42", {}), committed;
    committed.setCommitString("86");
    for (QInputMethodEvent* const event : {&committed, &composing}) {
        QCoreApplication::sendEvent(QGuiApplication::focusObject(), event);
        settle();
        EXPECT_EQ(filled(), 2) << "what is still being composed is no digit yet";
    }
    const auto hints = Qt::InputMethodHints(boxes()->inputMethodQuery(Qt::ImHints).toInt());
    EXPECT_TRUE(hints.testFlags(Qt::ImhDigitsOnly | Qt::ImhSensitiveData | Qt::ImhHiddenText |
                                Qt::ImhNoPredictiveText));
}

TEST_F(PasscodeItemTest, CommandsAndHostShortcutsStayApartFromDigits) {
    key(Qt::Key_8, "8", Qt::AltModifier);
    EXPECT_EQ(filled(), 0);
    for (const auto& [modifier, taken] : {std::pair{Qt::NoModifier, true}, {Qt::ControlModifier, false}}) {
        QKeyEvent shortcut(QEvent::ShortcutOverride, Qt::Key_8, modifier, "8");
        shortcut.ignore();
        QCoreApplication::sendEvent(boxes(), &shortcut);
        EXPECT_EQ(shortcut.isAccepted(), taken) << "a shortcut on a digit would eat it";
    }
}

TEST_F(PasscodeItemTest, NoDigitCanBeReadAndAccessibilityMayEnterText) {
    type("8642");
    const auto [texts, spoken] = readable();
    ASSERT_TRUE(texts.contains("Choose your PIN")) << "the search finds what is there";
    ASSERT_TRUE(spoken.contains("New PIN, 4 of 4 digits entered"));
    for (const char* const digits : {"86", "64", "42"})
        EXPECT_FALSE((texts + spoken).contains(digits)) << (texts + spoken).toStdString();

    auto* const field = QAccessible::queryAccessibleInterface(boxes());
    ASSERT_TRUE(field && field->editableTextInterface());
    EXPECT_EQ(field->role(), QAccessible::EditableText);
    EXPECT_EQ(field->textInterface()->characterCount(), 0);
    EXPECT_TRUE(field->state().focused);
    field->editableTextInterface()->replaceText(0, 0, "8\u00a06\u20134");
    settle();
    EXPECT_EQ(field->text(QAccessible::Name), "New PIN, 3 of 4 digits entered");
}

}  // namespace
}  // namespace korvane
