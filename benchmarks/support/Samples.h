// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstdio>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace korvane::bench {

/// The value that so many of the times do not exceed: 0.5 gives the median.
inline double percentile(std::vector<double> times, double share) {
    std::ranges::sort(times);
    return times.empty() ? 0 : times[static_cast<std::size_t>(share * static_cast<double>(times.size() - 1))];
}

/// One line for the report, which compares samples of the same round.
inline void printSample(const std::string& name, int round,
                        std::initializer_list<std::pair<const char*, double>> values) {
    std::printf(R"({"name":"%s","round":%d)", name.c_str(), round);
    for (const auto& [key, value] : values) std::printf(R"(,"%s":%.6g)", key, value);
    std::puts("}");
    std::fflush(stdout);
}

}  // namespace korvane::bench
