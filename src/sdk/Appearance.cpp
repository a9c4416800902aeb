// SPDX-License-Identifier: Apache-2.0
#include <korvane/Appearance.h>

#include <array>
#include <cstddef>
#include <limits>

namespace korvane {

double cornerRadius(eKorvaneCornerRadius choice) {
    static constexpr std::array<double, 4> radii{0, 8, 13, std::numeric_limits<double>::infinity()};
    return radii[static_cast<std::size_t>(choice)];
}

}  // namespace korvane
