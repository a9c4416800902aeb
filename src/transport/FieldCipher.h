// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace korvane {

// How every field travels: AES-CBC with PKCS#7 padding under the pre-shared key, in base64 (RFC 4648, section
// 4). The key is read from the shared state at each call and nothing is kept. Every failure is the empty
// text, which is none of the words that callers look for. Main thread.

/// Enciphers the bytes of `text`. "" when the key has not 16, 24 or 32 bytes, or the IV not 16.
std::string encryptField(const std::vector<std::uint8_t>& iv, std::string_view text);

/// Deciphers; the result is UTF-8. Bytes that are not UTF-8 are taken as UTF-16. "" when `base64Text` is not
/// strict base64, when key, IV, length or padding are wrong, and when the bytes are neither encoding.
///
/// The second form puts the plain text in the place of the enciphered one, and so needs no further buffer:
/// for the texts that are long.
std::string decryptField(const std::vector<std::uint8_t>& iv, std::string_view base64Text);
void decryptFieldInPlace(const std::vector<std::uint8_t>& iv, std::string& text);

}  // namespace korvane
