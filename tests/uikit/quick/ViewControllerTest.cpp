// SPDX-License-Identifier: Apache-2.0
#include <korvane/ViewController.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QGuiApplication>

#include "sdk/SdkConfig.h"
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
};

TEST_F(ViewControllerTest, MakingOneStoresTheCardAndShowingItStartsTheJourney) {
    const auto controller = SetPINFactory::create("card-7");
    EXPECT_EQ(SdkConfig::sharedInstance().cardId, "card-7");
    settle();
    EXPECT_EQ(service.calls("getCardStatus"), 0);
    controller->show(400, 700);
    settle();
    ASSERT_TRUE(journeyWindow());
    EXPECT_EQ(journeyWindow()->size(), QSize(400, 700));
    EXPECT_EQ(service.calls("getCardStatus"), 1);
    EXPECT_EQ(journeyWindow()->title(), "Choose your PIN");
    controller->hide();
    controller->show();
    settle();
    EXPECT_EQ(service.calls("getCardStatus"), 1) << "the journey stays where it is";
    EXPECT_TRUE(ActivateCardAndSetPINFactory::create("card-8"));
    EXPECT_EQ(SdkConfig::sharedInstance().cardId, "card-8");
    EXPECT_TRUE(GetCardImageFactory::create("card-9"));
    EXPECT_EQ(SdkConfig::sharedInstance().cardId, "card-9");
}

TEST_F(ViewControllerTest, HostMayLetGoOfItInTheNotification) {
    auto controller = SetPINFactory::create("card-7");
    const auto letGo = NotificationCenter::defaultCenter().observe(
        NotificationCloseUI, [&](const NotificationUserInfo&) { controller.reset(); });
    service.next("getCardStatus", service.result("Failure: something else"));
    controller->show();
    settle();
    QWindow* const shown = journeyWindow();
    ASSERT_TRUE(shown);
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, {});
    QCoreApplication::sendEvent(shown, &press);
    EXPECT_EQ(results, QStringList("FAILURE"));
    EXPECT_EQ(controller, nullptr);
    settle();
    EXPECT_FALSE(journeyWindow());
}

TEST_F(ViewControllerTest, ClosingTheWindowCancels) {
    const auto controller = SetPINFactory::create("card-7");
    controller->show();
    settle();
    ASSERT_TRUE(journeyWindow());
    journeyWindow()->close();
    settle();
    EXPECT_EQ(results, QStringList("CANCELED"));
}

}  // namespace
}  // namespace korvane
