// SPDX-License-Identifier: Apache-2.0
#include "base/Text.h"

#include <array>
#include <charconv>
#include <cmath>

#include "base/TextKernels.h"

namespace korvane {
namespace {

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

void appendUtf8(std::string& text, std::uint32_t point) {
    const auto push = [&text](std::uint32_t byte) { text.push_back(static_cast<char>(byte)); };
    if (point < 0x80) {
        push(point);
    } else if (point < 0x800) {
        push(0xC0 | point >> 6);
        push(0x80 | (point & 0x3F));
    } else if (point < 0x10000) {
        push(0xE0 | point >> 12);
        push(0x80 | (point >> 6 & 0x3F));
        push(0x80 | (point & 0x3F));
    } else {
        push(0xF0 | point >> 18);
        push(0x80 | (point >> 12 & 0x3F));
        push(0x80 | (point >> 6 & 0x3F));
        push(0x80 | (point & 0x3F));
    }
}

}  // namespace

std::string lowercased(std::string_view text) {
    std::string result{text};
    for (char& c : result) c = lower(c);
    return result;
}

bool equalIgnoringCase(std::string_view one, std::string_view other) {
    if (one.size() != other.size()) return false;
    for (std::size_t i = 0; i < one.size(); ++i) {
        if (lower(one[i]) != lower(other[i])) return false;
    }
    return true;
}

bool isAscii(std::string_view bytes) {
    const std::size_t whole = textKernels().ascii(bytes.data(), bytes.size());
    return portableTextKernels().ascii(bytes.data() + whole, bytes.size() - whole) == bytes.size() - whole;
}

std::size_t plainJsonLength(std::string_view text) {
    const std::size_t whole = textKernels().plainJson(text.data(), text.size());
    if (whole == text.size()) return whole;
    return whole + portableTextKernels().plainJson(text.data() + whole, text.size() - whole);
}

bool isUtf8(std::string_view bytes) {
    const auto at = [&bytes](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    std::size_t i = textKernels().ascii(bytes.data(), bytes.size());
    while (i < bytes.size()) {
        const unsigned lead = at(i);
        if (lead < 0x80) {
            ++i;
            continue;
        }
        const std::size_t more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
        if (lead < 0xC2 || lead > 0xF4 || bytes.size() - i <= more) return false;
        const unsigned second = at(i + 1);
        // Table 3-7 of the Unicode standard: the first continuation byte is what rules out overlong forms,
        // surrogates and points past U+10FFFF.
        const unsigned low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
        const unsigned high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
        if (second < low || second > high) return false;
        for (std::size_t k = 2; k <= more; ++k) {
            if ((at(i + k) & 0xC0) != 0x80) return false;
        }
        i += more + 1;
    }
    return true;
}

std::optional<std::string> utf8FromUtf16(std::span<const std::uint8_t> bytes) {
    if (bytes.size() % 2 != 0) return std::nullopt;
    bool bigEndian = false;
    std::size_t i = 0;
    if (bytes.size() >= 2) {
        const unsigned mark = static_cast<unsigned>(bytes[0] << 8 | bytes[1]);
        bigEndian = mark == 0xFEFF;
        if (mark == 0xFEFF || mark == 0xFFFE) i = 2;
    }
    const auto unit = [&](std::size_t at) {
        return static_cast<std::uint32_t>(bigEndian ? bytes[at] << 8 | bytes[at + 1]
                                                    : bytes[at + 1] << 8 | bytes[at]);
    };
    std::string text;
    for (; i < bytes.size(); i += 2) {
        std::uint32_t point = unit(i);
        if (point >= 0xDC00 && point <= 0xDFFF) return std::nullopt;
        if (point >= 0xD800 && point <= 0xDBFF) {
            if (i + 4 > bytes.size()) return std::nullopt;
            const std::uint32_t trail = unit(i + 2);
            if (trail < 0xDC00 || trail > 0xDFFF) return std::nullopt;
            point = 0x10000 + ((point - 0xD800) << 10) + (trail - 0xDC00);
            i += 2;
        }
        appendUtf8(text, point);
    }
    return text;
}

std::optional<double> decimalNumber(std::string_view text) {
    // from_chars takes no plus sign; the platform's conversion does.
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
    double number = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (failure != std::errc{} || end != text.data() + text.size() || !std::isfinite(number))
        return std::nullopt;
    return number;
}

std::string decimalText(double number) {
    std::array<char, 400> buffer;
    char* const last = buffer.data() + buffer.size();
    auto [end, failure] = std::to_chars(buffer.data(), last, number, std::chars_format::fixed);
    if (failure != std::errc{}) end = std::to_chars(buffer.data(), last, number).ptr;  // a very small one
    std::string text(buffer.data(), end);
    if (std::isfinite(number) && text.find_first_of(".e") == std::string::npos) text += ".0";
    return text;
}

}  // namespace korvane
