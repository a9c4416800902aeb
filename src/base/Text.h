// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace korvane {

/// ASCII letters to lower case; other bytes stay. The service's words are ASCII.
std::string lowercased(std::string_view text);

/// True when the texts are equal but for the case of ASCII letters.
KORVANE_API bool equalIgnoringCase(std::string_view one, std::string_view other);

/// True when the bytes are well-formed UTF-8 (RFC 3629: no overlong form, no surrogate, at most U+10FFFF).
bool isUtf8(std::string_view bytes);

/// True when every byte is ASCII.
bool isAscii(std::string_view bytes);

/// How much of `text`, from its start, is ASCII and stands for itself in a JSON string (RFC 8259, section 7):
/// no control character, quotation mark or backslash.
std::size_t plainJsonLength(std::string_view text);

/// UTF-16 to UTF-8. A byte-order mark chooses the order and is dropped; without one the order is
/// little-endian. An odd number of bytes or an unpaired surrogate gives none.
std::optional<std::string> utf8FromUtf16(std::span<const std::uint8_t> bytes);

/// The whole text as a decimal number of the C locale (fraction, exponent and sign allowed); none when it is
/// empty, starts with white space or NUL, has anything behind the number, or names no finite number.
std::optional<double> decimalNumber(std::string_view text);

/// Shortest decimal text that reads back as `number`, with at least one digit after the point: 60 gives
/// "60.0".
std::string decimalText(double number);

}  // namespace korvane
