// SPDX-License-Identifier: Apache-2.0
#include "uikit/quick/Theme.h"

#include <gtest/gtest.h>
#include <korvane/Initialize.h>

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

TEST_F(ThemeTest, TonesAreInRangeAndLegibleWhateverTheHostsColoursAndButtonsBearItsRadius) {
    toPinEntry();
    KorvaneColors stray, dim = KorvaneColors::dark();
    stray.background = {2, 1, 0.5, 1};  // a host's arithmetic may stray outside
    restyle(stray);
    EXPECT_EQ(theme().background(), QColor::fromRgbF(1, 1, 0.5));
    dim.error = Color::rgb8(150, 20, 20);
    for (const KorvaneColors& palette : {KorvaneColors{}, dim}) {
        restyle(palette);
        EXPECT_GE(contrast(theme().errorText(), theme().background()), 4.5) << "the host's red alone is not";
    }
    restyle({}, {.buttonCorner = eKorvaneCornerRadius::minor});
    auto* const fill = find("sdk.setpin.button")->property("background").value<QQuickItem*>();
    EXPECT_EQ(fill->property("radius").toDouble(), 8);
}

}  // namespace
}  // namespace korvane
