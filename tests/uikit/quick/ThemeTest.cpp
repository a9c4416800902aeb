// SPDX-License-Identifier: Apache-2.0
#include "uikit/quick/Theme.h"

#include <gtest/gtest.h>
#include <korvane/Initialize.h>

#include <cmath>

#include "sdk/SdkConfig.h"
#include "tests/uikit/quick/QuickFixture.h"

namespace korvane {
namespace {

class ThemeTest : public QuickFixture {
  protected:
    static void restyle(const KorvaneColors& colors, const KorvaneCornerRadii& radii = {}) {
        SdkConfig::sharedInstance().colors = colors;
        SdkConfig::sharedInstance().cornerRadii = radii;
    }
    double buttonRadius() const {
        return find("sdk.setpin.button")
            ->property("background")
            .value<QQuickItem*>()
            ->property("radius")
            .toDouble();
    }
};

TEST_F(ThemeTest, StandsForTheHostsColoursOnTheNextScreen) {
    KorvaneColors colors;
    colors.primary = Color::rgb8(120, 30, 200);
    colors.background = {2, -1, 0.5, 1};  // a host's arithmetic may stray outside
    toPinEntry();
    EXPECT_EQ(theme().primary(), QColor(0, 104, 56));
    restyle(colors);
    EXPECT_EQ(theme().primary(), QColor(0, 104, 56)) << "a screen keeps its look while it is shown";
    type("8642");
    key(Qt::Key_Return);
    EXPECT_EQ(theme().primary(), QColor(120, 30, 200));
    EXPECT_EQ(theme().background(), QColor::fromRgbF(1, 0, 0.5));
}

TEST_F(ThemeTest, FullRadiusDrawsACapsuleAndTheModalRadiusNothing) {
    toPinEntry();
    EXPECT_TRUE(std::isinf(theme().buttonRadius()));
    EXPECT_EQ(buttonRadius(), find("sdk.setpin.button")->height() / 2);
    EXPECT_EQ(theme().textFieldRadius(), 8);

    const QImage before = window.grabWindow();
    restyle({}, {.buttonCorner = eKorvaneCornerRadius::full, .modalCorner = eKorvaneCornerRadius::square});
    theme().refresh();
    settle();
    EXPECT_EQ(window.grabWindow(), before);
    restyle({}, {.buttonCorner = eKorvaneCornerRadius::minor});
    theme().refresh();
    settle();
    EXPECT_EQ(buttonRadius(), 8);
    EXPECT_NE(window.grabWindow(), before);
}

TEST_F(ThemeTest, SmallErrorTextIsLegibleOnEveryPalette) {
    toPinEntry();
    KorvaneColors light;
    KorvaneColors dark;
    dark.background = Color::rgb8(18, 18, 20);
    dark.colorOnBackground = Color::rgb8(240, 240, 245);
    dark.error = Color::rgb8(150, 20, 20);
    for (const KorvaneColors& colors : {light, dark}) {
        restyle(colors);
        theme().refresh();
        EXPECT_GE(contrast(theme().errorText(), theme().background()), 4.5);
    }
    restyle(light);
    theme().refresh();
    EXPECT_NE(theme().errorText(), theme().error()) << "the default red alone is too light";
    EXPECT_NEAR(contrast(Qt::black, Qt::white), 21, 0.01);
}

}  // namespace
}  // namespace korvane
