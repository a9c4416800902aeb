// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <korvane/Language.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>

#include "tests/uikit/quick/QuickFixture.h"

namespace korvane {
namespace {

class JourneyViewTest : public QuickFixture {};

TEST_F(JourneyViewTest, WheelStandsOnTheButtonOfTheCallAndTypingIsNotLost) {
    service.next("getCardStatus", service.result("Failure: Invalid Token"));
    show("SetPIN { cardId: 'card-1' }");
    walk({"sdk.sms.explain.button > EnterSMSCodeView"});
    const QString resend = "sdk.sms.code.resend";
    EXPECT_EQ(text(resend), "Send a new code in 30 s");
    service.device.timers->advance(std::chrono::seconds(30));
    settle();
    service.hang("pciTokenRequest");
    tap(resend);
    EXPECT_TRUE(find(resend)->property("busy").toBool());
    EXPECT_FALSE(find("sdk.sms.code.button")->property("busy").toBool());
    EXPECT_EQ(focused(), "sdk.sms.code.input");
}

TEST_F(JourneyViewTest, ASpinnerTellsAfterTenSecondsThatItTakesLongerThanUsual) {
    const QString usual = "One moment please", longer = "This is taking longer than usual";
    const auto pass = [this](double seconds) {
        service.device.timers->advance(std::chrono::duration<double>(seconds));
        settle();
    };
    const auto answer = [this](const UrlReply& reply) {
        service.device.urlSession->reply(service.device.urlSession->startedCount() - 1, reply);
        settle();
    };
    service.hang("getCardStatus");
    show("SetPIN { cardId: 'card-1' }");
    pass(9.9);
    EXPECT_EQ(screen()->title(), usual);
    pass(0.2);
    EXPECT_EQ(screen()->title(), longer);
    EXPECT_TRUE(setLanguage("de"));
    EXPECT_EQ(screen()->title(), "Das dauert länger als üblich");
    EXPECT_TRUE(setLanguage("en"));
    answer(service.ok(
        {{"encryptedResult", "Success"}, {"encryptedCardStatus", "A1"}, {"encryptedCardType", "physical"}}));

    service.hang("pinSet");
    walk({"type 8642", "key Return > ConfirmCardPINView", "type 8642", "key Return"});
    EXPECT_TRUE(screen()->spinner());
    pass(9.9);
    EXPECT_EQ(screen()->toast(), "");
    pass(0.2);
    EXPECT_EQ(screen()->toast(), longer);
    EXPECT_EQ(text("toast"), longer);
    pass(60);
    EXPECT_EQ(screen()->toast(), longer) << "as long as it takes";
    answer(service.result("Success"));
    EXPECT_EQ(view(), "SuccessPinSetView");
    EXPECT_EQ(screen()->toast(), "");
}

TEST_F(JourneyViewTest, AHostPreparesTheFirstJourneyInQml) {
    service.config.currentBearerToken.clear();
    show("Item { Component.onCompleted: Korvane.prepare() }");
    EXPECT_EQ(service.calls("token"), 1);
    toPinEntry();
    EXPECT_EQ(service.calls("token"), 1);
}

TEST_F(JourneyViewTest, EscapeGoesBackAndThenIsTheHosts) {
    toPinEntry();
    walk({"type 8642", "key Return > ConfirmCardPINView", "key Esc > EnterCardPINView"});
    EXPECT_EQ(filled(), 4) << "the entry is kept";
    QKeyEvent unused(QEvent::KeyPress, Qt::Key_Escape, {});
    QCoreApplication::sendEvent(&window, &unused);
    EXPECT_FALSE(unused.isAccepted());
    EXPECT_FALSE(find("back")) << "there is nothing to go back to";
}

TEST_F(JourneyViewTest, TheFocusRingIsForThoseWhoUseKeys) {
    toPinEntry();
    key(Qt::Key_Tab);
    const QImage ringed = window.grabWindow();
    QTest::mouseClick(&window, Qt::LeftButton, {}, {5, 5});
    settle();
    EXPECT_NE(window.grabWindow(), ringed);
}

TEST_F(JourneyViewTest, ATapDuringAMoveDoesNothing) {
    const QQuickItem* const root = toPinEntry();
    walk({"type 1234", "sdk.setpin.button > YouCanDoBetterView"});
    EXPECT_EQ(find("YouCanDoBetterView")->mapToScene({}).x(), 0) << "less motion is none";
    tap("sdk.youcandobetter.button");
    theme().setReducedMotion(false);
    for (QObject* const each : root->findChildren<QObject*>()) {
        if (each->inherits("QQuickNumberAnimation")) each->setProperty("duration", 2000);
    }
    const QPoint at = middle("sdk.setpin.button").toPoint();
    for (int i = 0; i < 2; ++i) {
        QTest::mouseClick(&window, Qt::LeftButton, {}, at);
        settle();
        wait(300);
    }
    EXPECT_EQ(view(), "YouCanDoBetterView") << "its button slides under the finger";
    EXPECT_GT(find("YouCanDoBetterView")->mapToScene({}).x(), 0) << "it has not arrived";
}

TEST_F(JourneyViewTest, AnotherCardStartsAnotherJourneyAndAHiddenOneDoesNotStart) {
    QQuickItem* const item = show("SetPIN { cardId: 'card-1'; visible: false }");
    EXPECT_EQ(service.calls("getCardStatus"), 0);
    item->setVisible(true);
    settle();
    EXPECT_EQ(service.sent("getCardStatus", "encryptedCardId"), "card-1");
    type("8642");
    item->setProperty("cardId", "card-2");
    settle();
    EXPECT_EQ(service.sent("getCardStatus", "encryptedCardId"), "card-2");
    EXPECT_EQ(view(), "EnterCardPINView");
    EXPECT_EQ(filled(), 0);
}

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

TEST_F(PasscodeItemTest, NoDigitCanBeRead) {
    type("8642");
    const auto [texts, spoken] = readable();
    ASSERT_TRUE(texts.contains("Choose your PIN")) << "the search finds what is there";
    ASSERT_TRUE(spoken.contains("New PIN, 4 of 4 digits entered"));
    for (const char* const digits : {"86", "64", "42"})
        EXPECT_FALSE((texts + spoken).contains(digits)) << (texts + spoken).toStdString();
}

}  // namespace
}  // namespace korvane
