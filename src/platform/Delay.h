// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cmath>

namespace korvane {

/// `delay` as a whole number of `Ticks`: rounded up, so that no timer fires early; zero when it is negative
/// or not a number; `longest` when it is more than that.
template <class Ticks>
constexpr Ticks clampedDelay(std::chrono::duration<double> delay, Ticks longest) {
    const std::chrono::duration<double, typename Ticks::period> ticks = delay;
    if (!(ticks.count() > 0)) return Ticks::zero();
    // Compared as floating point: converting a number that does not fit is undefined.
    if (ticks.count() >= static_cast<double>(longest.count())) return longest;
    return Ticks(static_cast<typename Ticks::rep>(std::ceil(ticks.count())));
}

}  // namespace korvane
