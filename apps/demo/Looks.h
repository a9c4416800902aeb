// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Appearance.h>

#include <optional>
#include <string_view>

/// What a bank makes of the component's look.
struct Look {
    korvane::KorvaneColors colors;
    korvane::KorvaneCornerRadii radii;
};

/// "default", "dark" or "brand", a loud one that no default shines through; none for any other name.
inline std::optional<Look> look(std::string_view name) {
    using korvane::Color;
    using enum korvane::eKorvaneCornerRadius;
    if (name == "default") return Look{};
    if (name == "dark") return Look{korvane::KorvaneColors::dark(), {}};
    if (name != "brand") return std::nullopt;
    return Look{{.primary = Color::rgb8(122, 31, 162),
                 .colorOnPrimary = Color::rgb8(255, 236, 64),
                 .secondary = Color::rgb8(255, 214, 236),
                 .colorOnSecondary = Color::rgb8(122, 14, 91),
                 .background = Color::rgb8(255, 246, 219),
                 .colorOnBackground = Color::rgb8(43, 10, 61),
                 .surface = Color::rgb8(255, 255, 255),
                 .colorOnSurface = Color::rgb8(60, 16, 83),
                 .error = Color::rgb8(190, 0, 40),
                 .onError = Color::rgb8(255, 246, 219),
                 .success = Color::rgb8(0, 121, 107),
                 .hintText = Color::rgb8(106, 75, 120),
                 .inputText = Color::rgb8(0, 77, 153),
                 .inputLabel = Color::rgb8(153, 51, 0),
                 .inputBorder = Color::rgb8(160, 70, 155)},
                {.buttonCorner = minor, .modalCorner = major, .textFieldCorner = square}};
}
