// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace korvane {

/// The loops that the large texts of the wire go through, in one form for each kind of processor. A form
/// works on whole blocks of its own size and leaves the rest to its caller: a vector loop has no tail of its
/// own. All of them are safe for any bytes, read and write nothing past the sizes given, and keep nothing.
/// Any thread.
struct TextKernels {
    std::string_view name;

    /// Decodes base64 (RFC 4648, section 4) from the start of `text`, whose `size` is a multiple of four and
    /// which has no padding, into `bytes`, which has room for size / 4 * 3. Returns how many characters it
    /// decoded, a multiple of four, or `invalidBase64`: then `bytes` holds nothing of worth.
    std::size_t (*decodeBase64)(const char* text, std::size_t size, std::uint8_t* bytes);

    /// Writes the whole groups of three of `bytes` as base64. Returns how many bytes those are.
    std::size_t (*encodeBase64)(const std::uint8_t* bytes, std::size_t size, char* text);

    /// How many bytes from the start are ASCII and stand for themselves in a JSON string: no control
    /// character, quotation mark or backslash (RFC 8259, section 7). May stop up to a block too early.
    std::size_t (*plainJson)(const char* text, std::size_t size);

    /// How many bytes from the start are ASCII. May stop up to a block too early.
    std::size_t (*ascii)(const char* text, std::size_t size);
};

inline constexpr std::size_t invalidBase64 = SIZE_MAX;

/// The form for any processor. It goes to the very end, or to the first byte that stops it.
const TextKernels& portableTextKernels();

/// Every form that this processor runs, the portable one first, the fastest last.
std::span<const TextKernels> runnableTextKernels();

/// The fastest form that this processor runs; chosen at the first call.
inline const TextKernels& textKernels() {
    static const TextKernels& best = runnableTextKernels().back();
    return best;
}

}  // namespace korvane
