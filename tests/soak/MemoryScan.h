// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace korvane::testing {

/// A text that does not stand in this object as it is: the search must not find itself.
struct Hidden {
    static constexpr char mask = 0x55;
    std::array<char, 20> masked{};
    std::size_t size = 0;

    constexpr explicit Hidden(std::string_view text) : size(text.size()) {
        for (std::size_t i = 0; i < size; ++i) masked[i] = static_cast<char>(text[i] ^ mask);
    }
    bool isAt(const unsigned char* bytes, std::size_t step) const {
        std::size_t i = 0;
        while (i < size && static_cast<char>(bytes[i * step] ^ mask) == masked[i]) ++i;
        return i == size;
    }
    std::string shown() const {
        std::string text(masked.data(), size);
        for (char& c : text) c = static_cast<char>(c ^ mask);
        return text;
    }
};

/// Where the text stands in all that this process can write to, as bytes or as UTF-16, with what is around
/// it. Within digits or letters on both sides it is a part of something else.
std::vector<std::string> findInMemory(const Hidden& text);

/// A PIN that stands nowhere in there yet.
Hidden absentPin();

}  // namespace korvane::testing
