// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace korvane::bench {

/// A measurement that cannot be made ends the process, with status 1 and the reason: no figure is better than
/// a wrong one.
inline void require(bool good, const std::string& otherwise) {
    if (good) return;
    std::fprintf(stderr, "%s\n", otherwise.c_str());
    std::exit(1);
}

}  // namespace korvane::bench
