// SPDX-License-Identifier: Apache-2.0
#include <korvane/ViewController.h>

#include <gtest/gtest.h>

#include <QGuiApplication>

#include "tests/uikit/quick/QuickFixture.h"

namespace korvane {
namespace {

class ViewControllerTest : public QuickFixture {
  protected:
    QWindow* journeyWindow() const {
        for (QWindow* const each : QGuiApplication::topLevelWindows()) {
            if (each->isVisible() && each != &window) return each;
        }
        return nullptr;
    }
    void showWindow() {
        controller->show(400, 700);
        settle();
        ASSERT_TRUE(journeyWindow());
    }

    std::unique_ptr<ViewController> controller = SetPINFactory::create("card-7");
};

TEST_F(ViewControllerTest, ShowingItStartsTheJourneyWhichStaysWhereItIsUntilTheWindowIsClosed) {
    settle();
    EXPECT_EQ(service.calls("getCardStatus"), 0);
    showWindow();
    EXPECT_EQ(journeyWindow()->size(), QSize(400, 700));
    EXPECT_EQ(journeyWindow()->title(), "Choose your PIN");
    controller->hide();
    showWindow();
    EXPECT_EQ(service.calls("getCardStatus"), 1);
    EXPECT_EQ(service.sent("getCardStatus", "encryptedCardId"), "card-7");
    journeyWindow()->close();
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
    QCoreApplication::sendEvent(journeyWindow(), &press);
    EXPECT_EQ(results, QStringList("FAILURE"));
    EXPECT_EQ(controller, nullptr);
    settle();
    EXPECT_FALSE(journeyWindow());
}

}  // namespace
}  // namespace korvane
