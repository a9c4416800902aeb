// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

#include "tests/uikit/quick/QuickFixture.h"

namespace korvane {
namespace {

class JourneyViewTest : public QuickFixture {
  protected:
    QPointF placeOf(const QString& control) const {
        const QQuickItem* const item = find(control);
        return item ? item->mapToScene(QPointF()) : QPointF(-1, -1);
    }
};

TEST_F(JourneyViewTest, MismatchIsToldAndTheNextDigitBeginsAgain) {
    toPinEntry();
    type("8642");
    tap("sdk.setpin.button");
    type("8643");
    find("sdk.confirmpin.button")->forceActiveFocus(Qt::TabFocusReason);
    key(Qt::Key_Space, " ");
    EXPECT_EQ(text("message"), "The PINs don’t match. Enter your new PIN again.");
    EXPECT_TRUE(find("sdk.confirmpin.input")->hasActiveFocus());
    type("8");
    EXPECT_FALSE(find("message"));
    type("642");
    tap("sdk.confirmpin.button");
    tap("sdk.success.setpin.button");
    EXPECT_EQ(closed, QStringList("SUCCESS"));
}

TEST_F(JourneyViewTest, WheelStandsOnTheButtonOfTheCallAndTypingIsNotLost) {
    service.next("getCardStatus", service.result("Failure: Invalid Token"));
    showSetPIN();
    tap("sdk.sms.explain.button");
    ASSERT_EQ(view(), "EnterSMSCodeView");
    service.device.timers->advance(std::chrono::seconds(12));
    settle();
    EXPECT_EQ(text("sdk.sms.code.resend"), "Send a new code in 18 s");
    EXPECT_FALSE(usable("sdk.sms.code.resend"));
    service.device.timers->advance(std::chrono::seconds(18));
    settle();
    EXPECT_EQ(text("sdk.sms.code.resend"), "Send a new code");

    service.hang("pciTokenRequest");
    tap("sdk.sms.code.resend");
    EXPECT_TRUE(find("sdk.sms.code.resend")->property("busy").toBool());
    EXPECT_FALSE(find("sdk.sms.code.button")->property("busy").toBool());
    EXPECT_TRUE(find("sdk.sms.code.input")->hasActiveFocus());
    answer(service.result("Success"));
    EXPECT_FALSE(find("sdk.sms.code.resend")->property("busy").toBool());
    EXPECT_FALSE(screen()->toast().isEmpty());
}

TEST_F(JourneyViewTest, EscapeClosesTheSheetThenGoesBackAndThenIsTheHosts) {
    toPinEntry();
    type("8642");
    key(Qt::Key_Return);
    ASSERT_EQ(view(), "ConfirmCardPINView");
    key(Qt::Key_Escape);
    ASSERT_EQ(view(), "EnterCardPINView");
    EXPECT_EQ(screen()->boxes()->filled, 4) << "the entry is kept";

    tap("sdk.setpin.fourdigits");
    ASSERT_TRUE(screen()->sheetOpen());
    EXPECT_FALSE(usable("sdk.setpin.button")) << "nothing under the sheet can be reached";
    type("1");
    EXPECT_EQ(screen()->boxes()->filled, 4);
    key(Qt::Key_Escape);
    EXPECT_FALSE(screen()->sheetOpen());
    EXPECT_TRUE(find("sdk.setpin.input")->hasActiveFocus());

    QKeyEvent unused(QEvent::KeyPress, Qt::Key_Escape, {});
    QCoreApplication::sendEvent(&window, &unused);
    EXPECT_FALSE(unused.isAccepted());
    EXPECT_FALSE(find("back")) << "there is nothing to go back to";
}

TEST_F(JourneyViewTest, TabGoesThroughTheControlsAndSpaceUsesThem) {
    toPinEntry();
    type("8642");
    QStringList reached;
    for (int i = 0; i < 3; ++i) {
        key(Qt::Key_Tab);
        reached << window.activeFocusItem()->objectName();
    }
    EXPECT_EQ(reached, QStringList({"sdk.setpin.button", "sdk.setpin.fourdigits", "sdk.setpin.input"}));
    key(Qt::Key_Backtab, {}, Qt::ShiftModifier);
    EXPECT_TRUE(window.activeFocusItem()->property("visualFocus").toBool());
    const QImage ringed = window.grabWindow();
    QTest::mouseClick(&window, Qt::LeftButton, {}, {5, 5});
    settle();
    EXPECT_NE(window.grabWindow(), ringed) << "the ring is for those who use keys";
    key(Qt::Key_Shift);
    EXPECT_EQ(window.grabWindow(), ringed);
    key(Qt::Key_Space, " ");
    EXPECT_TRUE(screen()->sheetOpen());
}

TEST_F(JourneyViewTest, ReducedMoveIsOverAtOnceAndATapDuringAMoveDoesNothing) {
    QQuickItem* const root = show("import Korvane\nSetPIN { cardId: \"card-1\" }", {});
    type("1234");
    const QQuickItem* const button = find("sdk.setpin.button");
    const QPoint at = button->mapToScene(button->boundingRect().center()).toPoint();
    tap("sdk.setpin.button");
    const QPointF arrived = placeOf("sdk.youcandobetter.button");
    wait(300);
    EXPECT_EQ(placeOf("sdk.youcandobetter.button"), arrived);
    tap("sdk.youcandobetter.button");

    theme().setReducedMotion(false);
    for (QObject* const each : root->findChildren<QObject*>()) {
        if (each->inherits("QQuickNumberAnimation")) each->setProperty("duration", 2000);
    }
    QTest::mouseClick(&window, Qt::LeftButton, {}, at);
    settle();
    wait(800);
    EXPECT_NE(placeOf("sdk.youcandobetter.button"), arrived);
    QTest::mouseClick(&window, Qt::LeftButton, {}, at);
    settle();
    EXPECT_EQ(view(), "YouCanDoBetterView") << "its button slides under the finger";
}

TEST_F(JourneyViewTest, OnlyWhatChangedIsSignalled) {
    toPinEntry();
    const ScreenModel* const model = screen();
    QSignalSpy controls(model, &ScreenModel::controlsChanged);
    QSignalSpy title(model, &ScreenModel::titleChanged);
    QSignalSpy passcode(model, &ScreenModel::passcodeChanged);
    const QQuickItem* const button = find("sdk.setpin.button");
    type("86");
    EXPECT_EQ(passcode.count(), 2);
    EXPECT_EQ(controls.count(), 0);
    EXPECT_EQ(title.count(), 0);
    EXPECT_EQ(find("sdk.setpin.button"), button);
}

TEST_F(JourneyViewTest, AnotherCardStartsAnotherJourneyAndAHiddenOneDoesNotStart) {
    QQuickItem* const item = show("import Korvane\nSetPIN { cardId: \"card-1\"; visible: false }", {});
    EXPECT_EQ(service.calls("getCardStatus"), 0);
    item->setVisible(true);
    settle();
    EXPECT_EQ(service.sent("getCardStatus", "encryptedCardId"), "card-1");
    type("8642");
    item->setProperty("cardId", "card-2");
    settle();
    EXPECT_EQ(service.sent("getCardStatus", "encryptedCardId"), "card-2");
    EXPECT_EQ(view(), "EnterCardPINView");
    EXPECT_EQ(screen()->boxes()->filled, 0);
}

}  // namespace
}  // namespace korvane
