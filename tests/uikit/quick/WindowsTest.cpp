// SPDX-License-Identifier: Apache-2.0
#include <korvane/ViewController.h>

#include <QGuiApplication>

#include "tests/uikit/quick/QuickFixture.h"
#include "uikit/quick/QuickBiometricPrompt.h"

namespace korvane {
namespace {

class Windows : public QuickFixture {
  protected:
    /// One that is not the test's own.
    QWindow* otherWindow() const {
        for (QWindow* const each : QGuiApplication::topLevelWindows()) {
            if (each->isVisible() && each != &window) return each;
        }
        return nullptr;
    }
};

class ViewControllerTest : public Windows {
  protected:
    void showWindow() {
        controller->show(400, 700);
        settle();
        ASSERT_TRUE(otherWindow());
    }

    std::unique_ptr<ViewController> controller = SetPINFactory::create("card-7");
};

TEST_F(ViewControllerTest, ShowingItStartsTheJourneyWhichStaysWhereItIsUntilTheWindowIsClosed) {
    settle();
    EXPECT_EQ(service.calls("getCardStatus"), 0);
    showWindow();
    EXPECT_EQ(otherWindow()->title(), "Choose your PIN");
    controller->hide();
    showWindow();
    EXPECT_EQ(service.calls("getCardStatus"), 1);
    EXPECT_EQ(service.sent("getCardStatus", "encryptedCardId"), "card-7");
    otherWindow()->close();
    settle();
    EXPECT_EQ(results, QStringList("CANCELED"));
    EXPECT_TRUE(ActivateCardAndSetPINFactory::create("card-8") && service.config.cardId == "card-8");
    EXPECT_TRUE(GetCardImageFactory::create("card-9") && service.config.cardId == "card-9");
}

TEST_F(ViewControllerTest, HostMayLetGoOfItInTheNotification) {
    const auto letGo = NotificationCenter::defaultCenter().observe(
        NotificationCloseUI, [&](const NotificationUserInfo&) { controller.reset(); });
    service.next("getCardStatus", service.result("Failure: something else"));
    showWindow();
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, {});
    QCoreApplication::sendEvent(otherWindow(), &press);
    EXPECT_EQ(results, QStringList("FAILURE"));
    EXPECT_EQ(controller, nullptr);
    settle();
    EXPECT_FALSE(otherWindow());
}

TEST_F(ViewControllerTest, AClosedWindowPostsTheResultThatItsJourneyHasAndNoneAfterTheJourneysOwn) {
    controller = GetCardImageFactory::create("card-7");
    showWindow();
    auto* const viewer = otherWindow()->findChild<QQuickItem*>("sdk.cardviewer.device.details.reveal");
    ASSERT_TRUE(viewer);
    viewer->forceActiveFocus();
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Space, {}), release(QEvent::KeyRelease, Qt::Key_Space, {});
    QCoreApplication::sendEvent(otherWindow(), &press);
    QCoreApplication::sendEvent(otherWindow(), &release);
    settle();
    otherWindow()->close();
    settle();
    EXPECT_EQ(std::exchange(results, {}), QStringList("SUCCESS")) << "something was done in the viewer";

    service.next("getCardStatus", service.result("Failure: something else"));
    controller = SetPINFactory::create("card-7");
    showWindow();
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, {});
    QCoreApplication::sendEvent(otherWindow(), &enter);
    settle();
    otherWindow()->close();
    settle();
    EXPECT_EQ(results, QStringList("FAILURE")) << "the page's button has posted already";
}

TEST_F(Windows, TwoItemsHearTheirOwnJourneysAlone) {
    QQuickItem* const root = show(R"(Item {
        property string heard
        Row {
            anchors.fill: parent
            SetPIN { width: 390; height: 844; cardId: 'card-1'; closable: true; onClosed: r => heard += 'first ' + r }
            GetCardImage { width: 390; height: 844; cardId: 'card-2'; onClosed: r => heard += ', second ' + r }
        }
    })",
                                  {780, 844});
    settle();
    EXPECT_TRUE(tap("window.close"));
    EXPECT_EQ(root->property("heard"), "first CANCELED");
    EXPECT_TRUE(tap("xmark"));
    EXPECT_EQ(root->property("heard"), "first CANCELED, second CANCELED");
}

TEST_F(Windows, TheWindowsCloseControlIsOnScreensWithoutAWayOutAlone) {
    service.hang("getCardStatus");
    show("SetPIN { cardId: 'card-1'; closable: true }");
    EXPECT_TRUE(find("window.close")) << "the first decision may take a minute";
    service.device.urlSession->reply(service.device.urlSession->startedCount() - 1,
                                     service.ok({{"encryptedResult", "Success"},
                                                 {"encryptedCardStatus", "A1"},
                                                 {"encryptedCardType", "physical"}}));
    settle();
    EXPECT_EQ(view(), "EnterCardPINView");
    EXPECT_TRUE(find("window.close"));
    walk({"sdk.setpin.fourdigits", "sdk.setpin.fourdigits.info.button", "type 8642",
          "key Return > ConfirmCardPINView"});
    EXPECT_FALSE(find("window.close")) << "back is the way out";
    walk({"back > EnterCardPINView", "window.close"});
    EXPECT_EQ(results, QStringList("CANCELED"));
    show("GetCardImage { cardId: 'card-1'; closable: true }");
    EXPECT_FALSE(find("window.close")) << "the viewer has a control of its own";
    toPinEntry();
    EXPECT_FALSE(find("window.close")) << "an embedded journey leaves that to its app";
}

class BiometricSheet : public Windows {
  protected:
    template <class Condition>
    bool becomes(Condition condition) {
        return QTest::qWaitFor([&] { return settle(), condition(); }, 10'000);
    }
    /// Asks for a sheet that no reader stands behind.
    std::unique_ptr<BiometricPrompt::Handle> ask() {
        auto sheet = prompt->show("reason",
                                  {[this](bool visible) { seen.push_back(visible); }, [this] { ++cancels; }});
        settle();
        return sheet;
    }

    std::shared_ptr<QuickBiometricPrompt> prompt = std::make_shared<QuickBiometricPrompt>();
    std::vector<bool> seen;
    int cancels = 0;
};

TEST_F(BiometricSheet, TellsWhetherItIsInSightAndGivesTheKeysBack) {
    toPinEntry();
    const QQuickItem* const before = window.activeFocusItem();
    QQuickWindow question;
    question.setModality(Qt::ApplicationModal);
    auto sheet = ask();
    const auto isInSight = [this](bool expected) {
        return becomes([&] { return !seen.empty() && seen.back() == expected; });
    };
    EXPECT_TRUE(isInSight(true));
    window.showMinimized();
    EXPECT_TRUE(isInSight(false));
    window.showNormal();
    EXPECT_TRUE(isInSight(true));
    question.show();
    EXPECT_TRUE(isInSight(false));
    EXPECT_EQ(text("biometricMessage"), "Select this window to use the fingerprint reader.");
    question.hide();
    window.requestActivate();
    EXPECT_TRUE(isInSight(true));
    sheet->tell("sdk.biometrics.nomatch");
    EXPECT_EQ(text("biometricMessage"), "That didn’t match. Please try again.");
    walk({"key Tab", "type 13"});
    find("EnterCardPINView")->forceActiveFocus();
    settle();
    EXPECT_EQ(focused(), "sdk.biometrics.cancel");
    key(Qt::Key_Escape);
    EXPECT_EQ(cancels, 1);
    sheet.reset();
    EXPECT_TRUE(becomes([this] { return !find("biometricSheet"); }));
    EXPECT_EQ(window.activeFocusItem(), before);
    EXPECT_EQ(filled(), 0) << "a digit went to the PIN under the sheet";
}

TEST_F(BiometricSheet, ComesOverTheJourneyElseOverTheAppsWindow) {
    auto other = std::make_unique<QQuickWindow>();
    const auto isOnOther = [&] { return other->contentItem()->findChild<QQuickItem*>("biometricSheet"); };
    other->show();
    toPinEntry();
    other->requestActivate();
    auto sheet = ask();
    EXPECT_TRUE(find("biometricSheet"));
    // Where its window hides, the next best takes it; where that goes, nothing is left of it.
    window.hide();
    other->requestActivate();
    EXPECT_TRUE(becomes(isOnOther));
    other.reset();
    settle();
    sheet.reset();
    seen.clear();
    settle();
    EXPECT_TRUE(seen.empty());
}

TEST_F(BiometricSheet, HasAWindowOfItsOwnWhereTheAppShowsNoneAndClosingThatDeclines) {
    auto sheet = ask();
    EXPECT_TRUE(becomes([&] { return otherWindow() && !seen.empty(); }));
    otherWindow()->close();
    settle();
    EXPECT_EQ(cancels, 1);
    EXPECT_EQ(seen, (std::vector{true, false}));
    sheet.reset();
    settle();
    EXPECT_FALSE(otherWindow());
}

}  // namespace
}  // namespace korvane
