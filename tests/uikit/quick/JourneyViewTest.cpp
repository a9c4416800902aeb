// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

#include "tests/uikit/quick/QuickFixture.h"

namespace korvane {
namespace {

class JourneyViewTest : public QuickFixture {
  protected:
    /// The first question about the card is answered with an SMS step.
    void startWithSmsStep() {
        service.next("getCardStatus", service.result("Failure: Invalid Token"));
        showSetPIN();
        ASSERT_EQ(view(), "SMSExplainView");
    }

    /// Empty when all of them are there, named, drawn inside the window and told to accessibility.
    QStringList missing(const QStringList& controls) const {
        QStringList missing;
        for (const QString& control : controls) {
            const QQuickItem* const item = find(control);
            const QRectF area = item ? item->mapRectToScene(item->boundingRect()) : QRectF();
            if (area.isEmpty() || !QRectF(QPointF(), window.size()).contains(area)) missing << control;
        }
        return missing;
    }
};

TEST_F(JourneyViewTest, EveryScreenHasItsControlsAndTheTypedPinIsSent) {
    startWithSmsStep();
    EXPECT_EQ(missing({"sdk.sms.explain.button"}), QStringList());
    ASSERT_TRUE(tap("sdk.sms.explain.button"));
    ASSERT_EQ(view(), "EnterSMSCodeView");
    EXPECT_EQ(missing({"back", "sdk.sms.code.input", "sdk.sms.code.button", "sdk.sms.code.resend"}),
              QStringList());
    type("123456");

    ASSERT_EQ(view(), "EnterCardPINView");
    EXPECT_EQ(missing({"sdk.setpin.fourdigits", "sdk.setpin.input", "sdk.setpin.button"}), QStringList());
    type("1234");
    tap("sdk.setpin.button");
    ASSERT_EQ(view(), "YouCanDoBetterView");
    EXPECT_EQ(missing({"sdk.youcandobetter.button"}), QStringList());
    tap("sdk.youcandobetter.button");

    ASSERT_EQ(view(), "EnterCardPINView");
    type("8642");
    tap("sdk.setpin.button");
    ASSERT_EQ(view(), "ConfirmCardPINView");
    EXPECT_EQ(missing({"back", "sdk.confirmpin.input", "sdk.confirmpin.button"}), QStringList());
    type("8642");
    tap("sdk.confirmpin.button");
    EXPECT_EQ(service.sent("pinSet", "encryptedPIN"), "8642");

    ASSERT_EQ(view(), "SuccessPinSetView");
    EXPECT_EQ(missing({"sdk.success.setpin.button"}), QStringList());
    EXPECT_EQ(closed, QStringList());
    tap("sdk.success.setpin.button");
    EXPECT_EQ(closed, QStringList("SUCCESS"));
}

TEST_F(JourneyViewTest, RefusedEntryIsToldAndTakesTheFocusBack) {
    toPinEntry();
    type("8642");
    key(Qt::Key_Return);
    type("8643");
    find("sdk.confirmpin.button")->forceActiveFocus(Qt::TabFocusReason);
    key(Qt::Key_Space, " ");
    ASSERT_TRUE(find("message"));
    EXPECT_EQ(screen()->message(), "The PINs don’t match. Enter your new PIN again.");
    EXPECT_TRUE(find("sdk.confirmpin.input")->hasActiveFocus());
    type("8");
    EXPECT_FALSE(find("message"));
}

TEST_F(JourneyViewTest, WheelStandsOnTheButtonOfTheCallAndTypingIsNotLost) {
    startWithSmsStep();
    tap("sdk.sms.explain.button");
    service.device.timers->advance(std::chrono::seconds(12));
    settle();
    EXPECT_EQ(find("sdk.sms.code.resend")->property("text"), "Send a new code in 18 s");
    EXPECT_FALSE(usable("sdk.sms.code.resend"));
    service.device.timers->advance(std::chrono::seconds(18));
    settle();
    EXPECT_EQ(find("sdk.sms.code.resend")->property("text"), "Send a new code");

    service.hang("pciTokenRequest");
    tap("sdk.sms.code.resend");
    EXPECT_TRUE(find("sdk.sms.code.resend")->property("busy").toBool());
    EXPECT_FALSE(find("sdk.sms.code.button")->property("busy").toBool());
    EXPECT_TRUE(find("sdk.sms.code.input")->hasActiveFocus());
    service.device.urlSession->reply(service.device.urlSession->requests().size() - 1,
                                     service.result("Success"));
    settle();
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
    EXPECT_EQ(missing({"sdk.setpin.fourdigits.info.button"}), QStringList());
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
    key(Qt::Key_Space, " ");
    EXPECT_TRUE(screen()->sheetOpen());
}

TEST_F(JourneyViewTest, SecondTapDuringAMoveDoesNothing) {
    toPinEntry();
    theme().setReducedMotion(false);
    type("1234");
    const QQuickItem* const button = find("sdk.setpin.button");
    const QPointF at = button->mapToScene(QPointF(button->width() / 2, button->height() / 2));
    for (int i = 0; i < 2; ++i) {
        QTest::mouseClick(&window, Qt::LeftButton, {}, at.toPoint());
        settle();
    }
    wait(400);
    EXPECT_EQ(view(), "YouCanDoBetterView") << "its button stands where the first tap was";
    tap("sdk.youcandobetter.button");
    wait(400);
    EXPECT_EQ(view(), "EnterCardPINView");
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
