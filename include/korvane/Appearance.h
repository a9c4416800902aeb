// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>

namespace korvane {

/// A colour in sRGB; each component, opacity included, from 0 to 1.
struct Color {
    double red = 0;      ///< 0 to 1
    double green = 0;    ///< 0 to 1
    double blue = 0;     ///< 0 to 1
    double opacity = 1;  ///< 0: nothing is seen of it; 1: nothing of what is behind it

    /// From 8-bit components: each is divided by 255.
    static constexpr Color rgb8(int red, int green, int blue) {
        return {red / 255.0, green / 255.0, blue / 255.0, 1.0};
    }
    /// Equal in all four components, exactly.
    friend constexpr bool operator==(const Color&, const Color&) = default;
};

/// The host's palette. Create it with its defaults, or as `dark()`, and override single colours.
struct KorvaneColors {
    /// A ready-made palette for dark surroundings; all of its pairs pass `auditContrast`. The component never
    /// follows the system's dark mode by itself: the host passes this to `initialize` when it goes dark.
    KORVANE_API static KorvaneColors dark();

    /// Filled buttons, the focus ring, the box that takes the next digit, symbols, a switch that is on.
    Color primary = Color::rgb8(0, 104, 56);
    /// Words on filled buttons.
    Color colorOnPrimary = Color::rgb8(248, 249, 251);
    /// Quiet buttons.
    Color secondary = Color::rgb8(248, 249, 251);
    /// Words on quiet buttons.
    Color colorOnSecondary = Color::rgb8(0, 104, 56);
    /// Screens, and the words in toasts.
    Color background = Color::rgb8(255, 255, 255);
    /// Titles and text of screens, and the ground of toasts.
    Color colorOnBackground = Color::rgb8(35, 31, 32);
    /// Sheets, popups, the inside of digit boxes.
    Color surface = Color::rgb8(255, 255, 255);
    /// Words on sheets and popups.
    Color colorOnSurface = Color::rgb8(35, 31, 32);
    /// Pictures of a failure. Small error text takes a tone of it that reaches 4.5 to 1.
    Color error = Color::rgb8(240, 61, 61);
    /// The sign in a picture of a failure.
    Color onError = Color::rgb8(255, 255, 255);
    /// Pictures of a success, the tick of an advice.
    Color success = Color::rgb8(11, 176, 123);
    /// Side remarks and masked values.
    Color hintText = Color::rgb8(113, 111, 112);
    /// Digits in the boxes, values of card details.
    Color inputText = Color::rgb8(46, 44, 47);
    /// What a card detail is called.
    Color inputLabel = Color::rgb8(46, 44, 47);
    /// Border of a digit box; the default is the toolkit's standard gray.
    Color inputBorder = Color::rgb8(142, 142, 147);

    /// Equal in every colour, exactly.
    friend constexpr bool operator==(const KorvaneColors&, const KorvaneColors&) = default;
};

/// How round a corner is. `cornerRadius` gives the points of each.
enum class eKorvaneCornerRadius {
    square,  ///< not at all
    minor,   ///< a little
    major,   ///< clearly
    full,    ///< half the height: a capsule
};

/// The radius in points (device-independent pixels): 0, 8, 13, and infinity for `full`, which draws a
/// capsule.
KORVANE_API double cornerRadius(eKorvaneCornerRadius choice);

/// The host's corner radius choices.
struct KorvaneCornerRadii {
    /// Of buttons.
    eKorvaneCornerRadius buttonCorner = eKorvaneCornerRadius::full;
    /// Stored, but no screen reads it (deliberate).
    eKorvaneCornerRadius modalCorner = eKorvaneCornerRadius::major;
    /// Of digit boxes and rows.
    eKorvaneCornerRadius textFieldCorner = eKorvaneCornerRadius::minor;

    /// Equal in all three choices.
    friend constexpr bool operator==(const KorvaneCornerRadii&, const KorvaneCornerRadii&) = default;
};

}  // namespace korvane
