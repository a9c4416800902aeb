// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cctype>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "base/Secret.h"

// Looks for secrets in all that this process can write to.
namespace korvane::testing {

inline const std::vector<std::string> nowhere;

/// A text as it is not, and back: the search must not find itself.
inline std::string masked(std::string text) {
    for (char& c : text) c = static_cast<char>(~c);
    return text;
}

inline Wiped<std::string> shown(const std::string& text) {
    return Wiped<std::string>{masked(text)};
}

/// What may stand beside a text that is found.
enum class Beside {
    oneSide,  ///< digits or letters on one side at most: the end of a longer secret counts
    nothing   ///< neither: a short text is the end of many others, of a port's number or a token for instance
};

/// Where the text, masked, stands in all that this process can write to, as bytes or as UTF-16.
inline std::vector<std::string> find(const std::string& text, Beside beside = Beside::oneSide) {
    std::vector<std::string> found;
    const int memory = open("/proc/self/mem", O_RDONLY | O_CLOEXEC);
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        if (line.find(" rw") == line.npos) continue;
        const std::size_t from = std::stoul(line, nullptr, 16),
                          to = std::stoul(line.substr(line.find('-') + 1), nullptr, 16);
        // The one copy is gone before the list is read on.
        const std::size_t margin = 64, size = to - from + 2 * margin;
        const auto copy = static_cast<char*>(
            mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        const auto read = pread(memory, copy + margin, to - from, static_cast<off_t>(from));
        for (const char* at = copy + margin; at < copy + margin + read; ++at) {
            for (const int step : {1, 2}) {
                std::ptrdiff_t i = 0;
                while (i < std::ssize(text) && static_cast<char>(~at[i * step]) == text[i]) ++i;
                const int sides = (std::isalnum(at[-step]) != 0) + (std::isalnum(at[i * step]) != 0);
                if (i < std::ssize(text) || sides > (beside == Beside::oneSide ? 1 : 0)) continue;
                found.push_back(line.substr(line.rfind(' ') + 1));
            }
        }
        munmap(copy, size);
    }
    close(memory);
    return found;
}

/// A PIN that stands nowhere yet, masked: even ones and odd ones by turns, so that it is not weak.
inline std::string absentPin() {
    std::random_device random;
    for (std::string pin(4, ' ');;) {
        for (std::size_t i = 0; i < 4; ++i)
            pin[i] = static_cast<char>(~('0' + (i % 2 == 0 ? random() % 4 : 6 + random() % 4)));
        if (find(pin).empty()) return pin;
    }
}

}  // namespace korvane::testing
