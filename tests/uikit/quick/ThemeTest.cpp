// SPDX-License-Identifier: Apache-2.0
#include "uikit/quick/Theme.h"

#include <gtest/gtest.h>
#include <korvane/Initialize.h>

#include <QTest>
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

    using Tone = Color KorvaneColors::*;
    /// The positions of those of the colours that no pixel has when they alone are loud. Strokes of text are
    /// not quite as loud.
    std::vector<int> unpainted(const std::vector<Tone>& tones) {
        std::vector<int> found;
        for (std::size_t i = 0; i < tones.size(); ++i) {
            KorvaneColors colors;
            colors.*tones[i] = Color::rgb8(255, 0, 255);
            restyle(colors);
            if (!painted(window.grabWindow())) found.push_back(static_cast<int>(i));
        }
        restyle({});
        EXPECT_FALSE(painted(window.grabWindow()));
        return found;
    }

    QRgb pixel(const QString& item, double x, double y) {
        const QQuickItem* const found = find(item);
        return found ? window.grabWindow().pixelColor(found->mapToScene({x, y}).toPoint()).rgb() : 0;
    }

    const std::vector<int> none;

  private:
    static bool painted(const QImage& picture) {
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                const QColor color = picture.pixelColor(x, y);
                if (color.red() > 215 && color.green() < 40 && color.blue() > 215) return true;
            }
        }
        return false;
    }
};

TEST_F(ThemeTest, EachOfTheFifteenColoursReachesAScreenThatIsShown) {
    using C = KorvaneColors;
    QQuickItem* const pin = show("import Korvane\nSetPIN { cardId: \"card-1\" }", {}, {320, 568});
    type("12");
    EXPECT_EQ(unpainted({&C::background, &C::colorOnBackground, &C::primary, &C::surface, &C::inputText,
                         &C::inputBorder, &C::hintText}),
              none);
    tap("sdk.setpin.fourdigits");
    EXPECT_EQ(unpainted({&C::colorOnSurface, &C::colorOnPrimary}), none);
    tap("sdk.setpin.fourdigits.info.button");
    type("34");
    tap("sdk.setpin.button");
    ASSERT_EQ(view(), "YouCanDoBetterView");
    EXPECT_EQ(unpainted({&C::error, &C::onError, &C::success}), none);
    delete pin;

    show("import Korvane\nGetCardImage { cardId: \"card-1\" }", {}, {390, 844});
    EXPECT_EQ(unpainted({&C::inputLabel}), none);
    tap("sdk.cardviewer.card.activateAndSetPin.freezeMyCard");
    EXPECT_EQ(unpainted({&C::secondary, &C::colorOnSecondary}), none);
}

TEST_F(ThemeTest, StatesOfControlsAreTonesOfTheHostsColours) {
    toPinEntry();
    const QString button = "sdk.setpin.button", boxes = "sdk.setpin.input";
    KorvaneColors colors;
    colors.primary = Color::rgb8(120, 30, 200);
    colors.background = {2, 1, 0.5, 1};  // a host's arithmetic may stray outside
    restyle(colors);
    EXPECT_EQ(theme().background(), QColor::fromRgbF(1, 1, 0.5));
    EXPECT_EQ(pixel(button, 100, 6), theme().disabledFill().rgb());
    EXPECT_EQ(pixel(boxes, 30, 1), qRgb(120, 30, 200)) << "the box that takes the next digit";
    type("8642");
    EXPECT_EQ(pixel(button, 100, 6), qRgb(120, 30, 200));
    QTest::mousePress(&window, Qt::LeftButton, {}, find(button)->mapToScene({100, 6}).toPoint());
    EXPECT_EQ(pixel(button, 100, 6), theme().primaryPressed().rgb());
    QTest::mouseRelease(&window, Qt::LeftButton, {}, find(button)->mapToScene({100, 6}).toPoint());
    settle();
    type("8643");
    key(Qt::Key_Return);
    EXPECT_EQ(pixel("sdk.confirmpin.input", find("sdk.confirmpin.input")->width() - 30, 1),
              theme().errorText().rgb());
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

TEST_F(ThemeTest, SmallErrorTextIsLegibleOnEveryPalette) {
    toPinEntry();
    KorvaneColors dim = KorvaneColors::dark();
    dim.error = Color::rgb8(150, 20, 20);
    for (const KorvaneColors& colors : {KorvaneColors{}, dim}) {
        restyle(colors);
        EXPECT_GE(contrast(theme().errorText(), theme().background()), 4.5);
        EXPECT_NE(theme().errorText(), theme().error()) << "the host's red alone is not legible";
    }
}

}  // namespace
}  // namespace korvane
