// SPDX-License-Identifier: Apache-2.0
// The sheet of a fingerprint check, with the real daemon and a virtual reader behind it.
// GIO comes first: it has a member of a name that is a keyword of Qt's.
#include "tests/platform/support/Devices.h"

#include <gmock/gmock.h>

#include <QGuiApplication>
#include <algorithm>

#include "platform/linux/FprintdContext.h"
#include "platform/qt/QtMainQueue.h"
#include "tests/uikit/quick/QuickFixture.h"
#include "uikit/quick/QuickBiometricPrompt.h"

namespace korvane {
namespace {

using ::testing::ElementsAre;

class BiometricSheet : public QuickFixture {
  protected:
    template <class Condition>
    bool becomes(Condition condition) {
        for (int turns = 0; turns < 500 && !condition(); ++turns) settle();
        return condition();
    }
    QString message() const {
        const QQuickItem* const item = find("biometricMessage");
        return item ? item->property("text").toString() : "no sheet";
    }
    /// Asks for a sheet that no reader stands behind.
    std::unique_ptr<BiometricPrompt::Handle> ask() {
        return prompt->show("reason",
                            {[this](bool visible) { seen.push_back(visible); }, [this] { ++cancels; }});
    }

    std::shared_ptr<QuickBiometricPrompt> prompt = std::make_shared<QuickBiometricPrompt>();
    std::vector<bool> seen;
    int cancels = 0;
};

class ReaderSheet : public BiometricSheet {
  protected:
    ReaderSheet() { devices.ask("enrol"); }

    /// Starts a check over the PIN entry, and waits until the reader is armed.
    void arm() {
        check = context.evaluate("reason", [this](bool match) { replies.push_back(match); });
        ASSERT_TRUE(becomes([this] { return find("biometricSheet") && devices.is("armed"); }));
    }
    bool isArmed(bool armed = true) {
        return becomes([&] { return devices.is("armed") == armed; });
    }
    bool ends(bool match) {
        return becomes([this] { return !find("biometricSheet") && !devices.is("armed"); }) &&
               std::exchange(replies, {}) == std::vector{match};
    }

    testing::Devices devices;
    const std::string started = devices.ask("start_reader");
    FprintdContext context{std::make_shared<QtMainQueue>(), prompt, {devices.ask("address SYSTEM")}};
    std::unique_ptr<BiometricEvaluation> check;
    std::vector<bool> replies;
};

TEST_F(ReaderSheet, ArmsTheReaderWhileItIsInSightAndGivesTheKeysBackAfterAMatch) {
    toPinEntry();
    const QQuickItem* const before = window.activeFocusItem();
    arm();
    EXPECT_EQ(message(), "Touch the fingerprint reader.");

    window.showMinimized();
    EXPECT_TRUE(isArmed(false));
    window.showNormal();
    EXPECT_TRUE(isArmed());
    QQuickWindow question;
    question.setModality(Qt::ApplicationModal);
    question.show();
    EXPECT_TRUE(isArmed(false));
    EXPECT_EQ(message(), "Select this window to use the fingerprint reader.");
    question.hide();
    window.requestActivate();
    EXPECT_TRUE(isArmed());

    devices.ask("send SCAN wrong");
    EXPECT_TRUE(becomes([this] { return message() == "That didn’t match. Please try again."; }));
    key(Qt::Key_Tab);
    type("13");
    find("EnterCardPINView")->forceActiveFocus();
    settle();
    EXPECT_EQ(window.activeFocusItem()->objectName(), "sdk.biometrics.cancel");
    EXPECT_TRUE(isArmed());
    devices.ask("send SCAN right");
    EXPECT_TRUE(ends(true));
    EXPECT_EQ(window.activeFocusItem(), before);
    type("1357");
    EXPECT_TRUE(usable("sdk.setpin.button")) << "no digit of those before went to the PIN";
}

TEST_F(ReaderSheet, IsDeclinedByItsButtonAndByEscape) {
    toPinEntry();
    arm();
    EXPECT_GE(find("sdk.biometrics.cancel")->height(), 44);
    EXPECT_TRUE(tap("sdk.biometrics.cancel"));
    EXPECT_TRUE(ends(false));
    arm();
    key(Qt::Key_Escape);
    EXPECT_TRUE(ends(false));
    EXPECT_EQ(view(), "EnterCardPINView");
}

TEST_F(BiometricSheet, ComesOverTheJourneyElseOverTheAppsWindow) {
    std::optional<QQuickWindow> other(std::in_place);
    other->show();
    other->requestActivate();
    settle();
    auto sheet = ask();
    settle();
    EXPECT_TRUE(other->contentItem()->findChild<QQuickItem*>("biometricSheet"));
    sheet.reset();

    toPinEntry();
    other->requestActivate();
    sheet = ask();
    settle();
    EXPECT_TRUE(find("biometricSheet"));
    // Where its window hides, the next best takes it; where that goes, nothing is left of it.
    window.hide();
    other->requestActivate();
    EXPECT_TRUE(becomes([&] { return other->contentItem()->findChild<QQuickItem*>("biometricSheet"); }));
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
    EXPECT_THAT(seen, ElementsAre(true));
    own()->close();
    settle();
    EXPECT_EQ(cancels, 1);
    EXPECT_THAT(seen, ElementsAre(true, false));
    sheet.reset();
    settle();
    EXPECT_FALSE(own());
}

}  // namespace
}  // namespace korvane
