// SPDX-License-Identifier: Apache-2.0
#include <korvane/Contrast.h>

#include <algorithm>
#include <cmath>

namespace korvane {
namespace {

struct Tone {
    const char* name;
    Color KorvaneColors::*color;
};

constexpr Tone primary{"primary", &KorvaneColors::primary};
constexpr Tone colorOnPrimary{"colorOnPrimary", &KorvaneColors::colorOnPrimary};
constexpr Tone secondary{"secondary", &KorvaneColors::secondary};
constexpr Tone colorOnSecondary{"colorOnSecondary", &KorvaneColors::colorOnSecondary};
constexpr Tone background{"background", &KorvaneColors::background};
constexpr Tone colorOnBackground{"colorOnBackground", &KorvaneColors::colorOnBackground};
constexpr Tone surface{"surface", &KorvaneColors::surface};
constexpr Tone colorOnSurface{"colorOnSurface", &KorvaneColors::colorOnSurface};
constexpr Tone error{"error", &KorvaneColors::error};
constexpr Tone onError{"onError", &KorvaneColors::onError};
constexpr Tone success{"success", &KorvaneColors::success};
constexpr Tone hintText{"hintText", &KorvaneColors::hintText};
constexpr Tone inputText{"inputText", &KorvaneColors::inputText};
constexpr Tone inputLabel{"inputLabel", &KorvaneColors::inputLabel};
constexpr Tone inputBorder{"inputBorder", &KorvaneColors::inputBorder};

constexpr double text = 4.5;
constexpr double shape = 3;

struct Pair {
    Tone foreground;
    Tone background;
    double required;
};

constexpr Pair pairs[] = {
    {colorOnPrimary, primary, text},
    {colorOnSecondary, secondary, text},
    {colorOnBackground, background, text},
    {colorOnSurface, surface, text},
    {error, background, text},
    {onError, error, text},
    {hintText, background, text},
    {inputText, surface, text},
    {inputLabel, background, text},
    {primary, background, text},
    // A border separates what is on its two sides.
    {inputBorder, surface, shape},
    {inputBorder, background, shape},
    // The focus ring on a sheet, and the border of the box that takes the next digit.
    {primary, surface, shape},
    {error, surface, shape},
    {success, background, shape},
};

/// `color` as it looks on an opaque `ground`.
Color over(const Color& color, const Color& ground) {
    const double part = std::clamp(color.opacity, 0.0, 1.0);
    const auto blend = [part](double front, double back) {
        return std::clamp(front, 0.0, 1.0) * part + std::clamp(back, 0.0, 1.0) * (1 - part);
    };
    return {blend(color.red, ground.red), blend(color.green, ground.green), blend(color.blue, ground.blue)};
}

double luminance(const Color& color) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

}  // namespace

double contrastRatio(const Color& ink, const Color& ground) {
    const Color opaque = over(ground, {1, 1, 1});
    const auto [dark, light] = std::minmax({luminance(over(ink, opaque)), luminance(opaque)});
    return (light + 0.05) / (dark + 0.05);
}

std::vector<ContrastFinding> auditContrast(const KorvaneColors& colors) {
    std::vector<ContrastFinding> findings;
    for (const Pair& pair : pairs) {
        const double ratio = contrastRatio(colors.*pair.foreground.color, colors.*pair.background.color);
        if (ratio < pair.required)
            findings.push_back({pair.foreground.name, pair.background.name, ratio, pair.required});
    }
    return findings;
}

}  // namespace korvane
