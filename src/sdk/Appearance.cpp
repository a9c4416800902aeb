// SPDX-License-Identifier: Apache-2.0
#include <korvane/Appearance.h>

#include <array>
#include <cstddef>
#include <limits>

namespace korvane {

KorvaneColors KorvaneColors::dark() {
    return {.primary = Color::rgb8(94, 211, 154),
            .colorOnPrimary = Color::rgb8(0, 33, 15),
            .secondary = Color::rgb8(35, 41, 43),
            .colorOnSecondary = Color::rgb8(143, 227, 184),
            .background = Color::rgb8(18, 21, 22),
            .colorOnBackground = Color::rgb8(236, 238, 239),
            .surface = Color::rgb8(28, 33, 35),
            .colorOnSurface = Color::rgb8(236, 238, 239),
            .error = Color::rgb8(255, 138, 133),
            .onError = Color::rgb8(59, 7, 6),
            .success = Color::rgb8(75, 214, 159),
            .hintText = Color::rgb8(169, 176, 179),
            .inputText = Color::rgb8(244, 246, 247),
            .inputLabel = Color::rgb8(213, 218, 220),
            .inputBorder = Color::rgb8(138, 146, 150)};
}

double cornerRadius(eKorvaneCornerRadius choice) {
    static constexpr std::array<double, 4> radii{0, 8, 13, std::numeric_limits<double>::infinity()};
    return radii[static_cast<std::size_t>(choice)];
}

}  // namespace korvane
