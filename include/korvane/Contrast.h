// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Appearance.h>
#include <korvane/Export.h>

#include <string>
#include <vector>

namespace korvane {

/// Two colours of a palette that stand on each other on some screen, with too little between them.
struct ContrastFinding {
    std::string foreground;  ///< field of `KorvaneColors`: "hintText"
    std::string background;  ///< the field it stands on: "surface"
    double ratio = 1;        ///< what it is
    double required = 1;     ///< 4.5 for text, 3 for borders, the focus ring and symbols
};

/// Contrast ratio of two colours, from 1 to 21 (WCAG 2.2, "contrast ratio" and "relative luminance"). A
/// translucent `ink` counts as it looks on `ground`, a translucent `ground` as it looks on white. Any thread.
KORVANE_API double contrastRatio(const Color& ink, const Color& ground);

/// Every pair of the palette that some screen uses and that is below 4.5 to 1 as text (WCAG 2.2, 1.4.3) or
/// below 3 to 1 as a border, focus ring or symbol (1.4.11); empty when there is none. Any thread.
///
/// `initialize` logs what it finds in debug builds, one line a pair.
KORVANE_API std::vector<ContrastFinding> auditContrast(const KorvaneColors& colors);

}  // namespace korvane
