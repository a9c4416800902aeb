// SPDX-License-Identifier: Apache-2.0
// The sheet of a fingerprint check, with the real daemon and a virtual reader behind it.
// GIO comes first: it has a member of a name that is a keyword of Qt's.
#include "tests/platform/support/Devices.h"

#include <QGuiApplication>
#include <algorithm>

#include "platform/linux/FprintdContext.h"
#include "platform/qt/QtMainQueue.h"
#include "tests/uikit/quick/QuickFixture.h"
#include "uikit/quick/QuickBiometricPrompt.h"

namespace korvane {
namespace {

class BiometricSheet : public QuickFixture {
  protected:
    template <class Condition>
    bool becomes(Condition condition) {
        for (int turns = 0; turns < 500 && !condition(); ++turns) settle();
        return condition();
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

TEST_F(BiometricSheet, ArmsTheReaderWhileItIsInSightAndGivesTheKeysBack) {
    testing::Devices devices;
    devices.ask("start_reader");
    devices.ask("enrol");
    FprintdContext context{std::make_shared<QtMainQueue>(), prompt, {devices.ask("address SYSTEM")}};
    const auto isArmed = [&](bool armed = true) {
        return becomes([&] { return devices.is("armed") == armed; });
    };
    toPinEntry();
    const QQuickItem* const before = window.activeFocusItem();
    QQuickWindow question;
    question.setModality(Qt::ApplicationModal);
    const std::pair<std::function<void()>, bool> ends[] = {{[&] { devices.ask("send SCAN right"); }, true},
                                                           {[&] { tap("sdk.biometrics.cancel"); }, false},
                                                           {[&] { key(Qt::Key_Escape); }, false}};
    for (const auto& [end, match] : ends) {
        std::vector<bool> replies;
        const auto check = context.evaluate("reason", [&](bool reply) { replies.push_back(reply); });
        ASSERT_TRUE(becomes([this] { return find("biometricSheet"); }) && isArmed());
        if (match) {
            EXPECT_EQ(text("biometricMessage"), "Touch the fingerprint reader.");
            window.showMinimized();
            EXPECT_TRUE(isArmed(false));
            window.showNormal();
            EXPECT_TRUE(isArmed());
            question.show();
            EXPECT_TRUE(isArmed(false));
            EXPECT_EQ(text("biometricMessage"), "Select this window to use the fingerprint reader.");
            question.hide();
            window.requestActivate();
            EXPECT_TRUE(isArmed());
            devices.ask("send SCAN wrong");
            EXPECT_TRUE(becomes(
                [this] { return text("biometricMessage") == "That didn’t match. Please try again."; }));
            key(Qt::Key_Tab);
            type("13");
            find("EnterCardPINView")->forceActiveFocus();
            settle();
            EXPECT_EQ(focused(), "sdk.biometrics.cancel");
        }
        EXPECT_TRUE(isArmed());
        end();
        EXPECT_TRUE(becomes([&] { return !find("biometricSheet") && !devices.is("armed"); }));
        EXPECT_EQ(replies, std::vector{match});
        EXPECT_EQ(window.activeFocusItem(), before);
    }
    EXPECT_EQ(filled(), 0) << "a digit went to the PIN under the sheet";
}

TEST_F(BiometricSheet, ComesOverTheJourneyElseOverTheAppsWindow) {
    auto other = std::make_unique<QQuickWindow>();
    const auto isOnOther = [&] { return other->contentItem()->findChild<QQuickItem*>("biometricSheet"); };
    other->show();
    other->requestActivate();
    settle();
    auto sheet = ask();
    EXPECT_TRUE(isOnOther());
    sheet.reset();

    toPinEntry();
    other->requestActivate();
    sheet = ask();
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
    const auto own = [] {
        const auto windows = QGuiApplication::topLevelWindows();
        const auto shown = std::ranges::find_if(windows, &QWindow::isVisible);
        return shown == windows.end() ? static_cast<QWindow*>(nullptr) : *shown;
    };
    auto sheet = ask();
    EXPECT_TRUE(becomes([&] { return own() && !seen.empty(); }));
    own()->close();
    settle();
    EXPECT_EQ(cancels, 1);
    EXPECT_EQ(seen, (std::vector{true, false}));
    sheet.reset();
    settle();
    EXPECT_FALSE(own());
}

}  // namespace
}  // namespace korvane
