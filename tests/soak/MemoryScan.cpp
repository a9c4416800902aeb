// SPDX-License-Identifier: Apache-2.0
#include "tests/soak/MemoryScan.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <bitset>
#include <cctype>
#include <fstream>
#include <random>
#include <sstream>

namespace korvane::testing {
namespace {

constexpr std::size_t margin = 64;
/// The one copy of what is read: passed over, and cleared in the end.
std::array<unsigned char, 1 << 20> window;

/// Calls `look(bytes, place)` for every byte that this process can write to, with a margin around it.
template <class Look>
void lookThrough(Look look) {
    const int memory = open("/proc/self/mem", O_RDONLY | O_CLOEXEC);
    const auto own = reinterpret_cast<std::uintptr_t>(window.data());
    const auto part = [&](std::uintptr_t from, std::uintptr_t to, const std::string& name) {
        for (; from < to; from += window.size() - 2 * margin) {
            const std::size_t wanted = std::min(window.size() - 2 * margin, to - from);
            window.fill(0);
            const auto got = pread(memory, window.data() + margin, wanted + margin, static_cast<off_t>(from));
            for (std::size_t i = margin; got > 0 && i < margin + wanted; ++i) look(window.data() + i, name);
        }
    };
    std::stringstream maps;
    maps << std::ifstream("/proc/self/maps").rdbuf();
    for (std::string line; std::getline(maps, line);) {
        std::uintptr_t from = 0, to = 0;
        char dash = 0;
        std::string rights, other, name;
        std::istringstream(line) >> std::hex >> from >> dash >> to >> rights >> other >> other >> other >>
            name;
        if (!rights.starts_with("rw")) continue;
        part(from, std::clamp(own, from, to), name);
        part(std::clamp(own + window.size(), from, to), to, name);
    }
    window.fill(0);
    close(memory);
}

}  // namespace

std::vector<std::string> findInMemory(const Hidden& text) {
    std::vector<std::string> found;
    lookThrough([&](const unsigned char* at, const std::string& name) {
        for (const std::size_t step : {1, 2}) {
            const bool within = std::isalnum(*(at - step)) && std::isalnum(at[text.size * step]);
            if (within || !text.isAt(at, step)) continue;
            std::string around;
            for (const unsigned char* byte = at - 24; byte < at + 40; ++byte)
                around += byte >= at && byte < at + text.size * step ? '*'
                          : std::isprint(*byte)                      ? static_cast<char>(*byte)
                                                                     : '.';
            found.push_back(name + ": " + around);
        }
    });
    return found;
}

Hidden absentPin() {
    std::bitset<10'000> there;
    lookThrough([&](const unsigned char* at, const std::string&) {
        std::size_t number = 0, i = 0;
        while (i < 4 && std::isdigit(at[i])) number = number * 10 + (at[i++] - '0');
        if (i == 4) there.set(number);
    });
    std::random_device random;
    for (;;) {
        const unsigned number = random() % 10'000;
        const std::array<unsigned, 4> digits{number / 1000, number / 100 % 10, number / 10 % 10, number % 10};
        // Weak ones have the same digit or neighbours in the middle.
        if (there[number] || digits[1] - digits[2] + 1 <= 2) continue;
        Hidden pin{""};
        for (const unsigned digit : digits)
            pin.masked[pin.size++] = static_cast<char>(('0' + digit) ^ Hidden::mask);
        return pin;
    }
}

}  // namespace korvane::testing
