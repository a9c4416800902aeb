// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace korvane {

/// AES in CBC mode (NIST SP 800-38A, 6.2) with PKCS#7 padding (RFC 5652, 6.3). The key's length chooses the
/// variant: 16, 24 or 32 bytes; the IV has 16. Any other length, and on deciphering any ciphertext that is
/// not a whole number of blocks or whose padding is wrong, gives none. Any thread.
std::optional<std::vector<std::uint8_t>> aesCbcEncrypt(std::span<const std::uint8_t> key,
                                                       std::span<const std::uint8_t> iv,
                                                       std::span<const std::uint8_t> plain);
std::optional<std::vector<std::uint8_t>> aesCbcDecrypt(std::span<const std::uint8_t> key,
                                                       std::span<const std::uint8_t> iv,
                                                       std::span<const std::uint8_t> cipher);

}  // namespace korvane
