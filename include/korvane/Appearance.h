// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace korvane {

/// A colour in sRGB; each component, opacity included, from 0 to 1.
struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double opacity = 1;

    /// From 8-bit components: each is divided by 255.
    static constexpr Color rgb8(int red, int green, int blue) {
        return {red / 255.0, green / 255.0, blue / 255.0, 1.0};
    }
    friend constexpr bool operator==(const Color&, const Color&) = default;
};

/// The host's palette. Create it with its defaults, or as `dark()`, and override single colours.
struct KorvaneColors {
    /// A ready-made palette for dark surroundings; all of its pairs pass `auditContrast`. The component never
    /// follows the system's dark mode by itself: the host passes this to `initialize` when it goes dark.
    static KorvaneColors dark();

    Color primary = Color::rgb8(0, 104, 56);
    Color colorOnPrimary = Color::rgb8(248, 249, 251);
    Color secondary = Color::rgb8(248, 249, 251);
    Color colorOnSecondary = Color::rgb8(0, 104, 56);
    Color background = Color::rgb8(255, 255, 255);
    Color colorOnBackground = Color::rgb8(35, 31, 32);
    Color surface = Color::rgb8(255, 255, 255);
    Color colorOnSurface = Color::rgb8(35, 31, 32);
    Color error = Color::rgb8(240, 61, 61);
    Color onError = Color::rgb8(255, 255, 255);
    Color success = Color::rgb8(11, 176, 123);
    Color hintText = Color::rgb8(113, 111, 112);
    Color inputText = Color::rgb8(46, 44, 47);
    Color inputLabel = Color::rgb8(46, 44, 47);
    Color inputBorder = Color::rgb8(142, 142, 147);  ///< the toolkit's standard gray

    friend constexpr bool operator==(const KorvaneColors&, const KorvaneColors&) = default;
};

/// How round a corner is.
enum class eKorvaneCornerRadius { square, minor, major, full };

/// The radius in points (device-independent pixels): 0, 8, 13, and infinity for `full`, which draws a
/// capsule.
double cornerRadius(eKorvaneCornerRadius choice);

/// The host's corner radius choices.
struct KorvaneCornerRadii {
    eKorvaneCornerRadius buttonCorner = eKorvaneCornerRadius::full;
    eKorvaneCornerRadius modalCorner =
        eKorvaneCornerRadius::major;  ///< stored, but no screen reads it (deliberate)
    eKorvaneCornerRadius textFieldCorner = eKorvaneCornerRadius::minor;

    friend constexpr bool operator==(const KorvaneCornerRadii&, const KorvaneCornerRadii&) = default;
};

}  // namespace korvane
