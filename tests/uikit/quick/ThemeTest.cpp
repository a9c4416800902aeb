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
    /// As a host does it while the journey is on screen.
    void restyle(const KorvaneColors& colors, const KorvaneCornerRadii& radii = {}) {
        const SdkConfig& config = service.config;
        ASSERT_TRUE(initialize(config.preSharedKeyBase64Encoded, config.apiUrl, config.ivCallback, false,
                               colors, radii));
        settle();
    }

    QRgb pixel(const QString& item, double x, double y) {
        return window.grabWindow().pixelColor(find(item)->mapToScene({x, y}).toPoint()).rgb();
    }
    /// Some pixel is as loud as strokes of text are in a loud colour.
    bool isLoud() {
        const QImage picture = window.grabWindow();
        for (int i = 0; i < picture.width() * picture.height(); ++i) {
            const QColor color = picture.pixelColor(i % picture.width(), i / picture.width());
            if (color.red() > 215 && color.green() < 40 && color.blue() > 215) return true;
        }
        return false;
    }
};

TEST_F(ThemeTest, EachOfTheFifteenColoursReachesAScreenThatIsShown) {
    using C = KorvaneColors;
    const auto unpainted = [this](std::initializer_list<Color C::*> tones) {
        int found = 0;
        for (const auto tone : tones) {
            KorvaneColors colors;
            colors.*tone = Color::rgb8(255, 0, 255);
            restyle(colors);
            found += !isLoud();
        }
        restyle({});
        return found + isLoud();
    };
    toPinEntry({320, 568});
    type("12");
    EXPECT_EQ(unpainted({&C::background, &C::colorOnBackground, &C::primary, &C::surface, &C::inputText,
                         &C::inputBorder, &C::hintText}),
              0);
    tap("sdk.setpin.fourdigits");
    EXPECT_EQ(unpainted({&C::colorOnSurface, &C::colorOnPrimary}), 0);
    walk({"sdk.setpin.fourdigits.info.button", "type 34", "sdk.setpin.button > YouCanDoBetterView"});
    EXPECT_EQ(unpainted({&C::error, &C::onError, &C::success}), 0);

    show("GetCardImage { cardId: 'card-1' }");
    EXPECT_EQ(unpainted({&C::inputLabel}), 0);
    tap("sdk.cardviewer.card.activateAndSetPin.freezeMyCard");
    EXPECT_EQ(unpainted({&C::secondary, &C::colorOnSecondary}), 0);
}

TEST_F(ThemeTest, StatesOfControlsAreTonesOfTheHostsColours) {
    toPinEntry();
    const QString button = "sdk.setpin.button", boxes = "sdk.confirmpin.input";
    KorvaneColors colors;
    colors.primary = Color::rgb8(120, 30, 200);
    colors.background = {2, 1, 0.5, 1};  // a host's arithmetic may stray outside
    restyle(colors);
    EXPECT_EQ(theme().background(), QColor::fromRgbF(1, 1, 0.5));
    EXPECT_EQ(pixel(button, 100, 6), theme().disabledFill().rgb());
    EXPECT_EQ(pixel("sdk.setpin.input", 30, 1), qRgb(120, 30, 200)) << "the box that takes the next digit";
    type("8642");
    EXPECT_EQ(pixel(button, 100, 6), qRgb(120, 30, 200));
    QTest::mousePress(&window, Qt::LeftButton, {}, middle(button).toPoint());
    EXPECT_EQ(pixel(button, 100, 6), theme().primaryPressed().rgb());
    QTest::mouseRelease(&window, Qt::LeftButton, {}, middle(button).toPoint());
    settle();
    type("8643");
    key(Qt::Key_Return);
    EXPECT_EQ(pixel(boxes, find(boxes)->width() - 30, 1), theme().errorText().rgb());

    KorvaneColors dim = KorvaneColors::dark();
    dim.error = Color::rgb8(150, 20, 20);
    for (const KorvaneColors& palette : {KorvaneColors{}, dim}) {
        restyle(palette);
        EXPECT_GE(contrast(theme().errorText(), theme().background()), 4.5) << "the host's red alone is not";
    }
}

TEST_F(ThemeTest, RadiiRoundButtonsAndBoxesAndTheModalOneNothing) {
    toPinEntry();
    const QString button = "sdk.setpin.button";
    const auto radius = [&] {
        return find(button)->property("background").value<QQuickItem*>()->property("radius").toDouble();
    };
    EXPECT_TRUE(std::isinf(theme().buttonRadius()));
    EXPECT_EQ(radius(), find(button)->height() / 2) << "a capsule";
    EXPECT_EQ(pixel("sdk.setpin.input", 1, 1), theme().background().rgb()) << "outside the round corner";

    using enum eKorvaneCornerRadius;
    const QImage before = window.grabWindow();
    restyle({}, {.buttonCorner = full, .modalCorner = square});
    EXPECT_EQ(window.grabWindow(), before);
    restyle({}, {.buttonCorner = minor, .modalCorner = square, .textFieldCorner = square});
    EXPECT_EQ(radius(), 8);
    EXPECT_EQ(pixel("sdk.setpin.input", 1, 1), theme().primary().rgb());
}

}  // namespace
}  // namespace korvane
