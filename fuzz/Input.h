// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace korvane::fuzz {

/// The bytes of one run, taken off from the front; when they are used up, every
/// choice is the first one.
struct Input {
    std::string_view bytes;

    /// A choice among 256 at most; a digit chooses what it says, so that a person
    /// can write seeds.
    std::size_t below(std::size_t count) {
        if (bytes.empty()) return 0;
        const std::size_t chosen = static_cast<std::uint8_t>(bytes.front() - '0');
        bytes.remove_prefix(1);
        return chosen % count;
    }
    /// Up to the next line feed, which goes too.
    std::string line() {
        const std::string text{bytes.substr(0, bytes.find('\n'))};
        bytes.remove_prefix(std::min(text.size() + 1, bytes.size()));
        return text;
    }
};

/// Ends the run as a finding unless the property holds.
inline void check(bool holds, const std::string& property) {
    if (holds) return;
    std::fprintf(stderr, "fuzz: this does not hold: %s\n", property.c_str());
    __builtin_trap();
}

}  // namespace korvane::fuzz
