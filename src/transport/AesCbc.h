// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

struct evp_cipher_ctx_st;  // OpenSSL's cipher context

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

/// Enciphers into `cipher`, which has room for the text and one block more, and gives the size.
std::optional<std::size_t> aesCbcEncrypt(std::span<const std::uint8_t> key, std::span<const std::uint8_t> iv,
                                         std::span<const std::uint8_t> plain, std::uint8_t* cipher);

/// The same for one message in pieces. Its key schedule is made for it and wiped with it: nothing of a key is
/// kept between messages. One thread at a time.
class AesCbc {
  public:
    enum class Direction { encrypt, decrypt };

    static constexpr std::size_t blockSize = 16;

    AesCbc(Direction direction, std::span<const std::uint8_t> key, std::span<const std::uint8_t> iv);

    /// Puts the next piece through. `output` has room for the piece and one block more, and does not overlap
    /// it. Gives the number of bytes written; none on failure.
    std::optional<std::size_t> update(std::span<const std::uint8_t> input, std::uint8_t* output);

    /// Ends the message: writes what is left, at most one block, and gives its size. None on failure; then
    /// what was written before is worth nothing.
    std::optional<std::size_t> finish(std::uint8_t* output);

  private:
    struct ContextDeleter {
        void operator()(evp_cipher_ctx_st* context) const;
    };
    std::unique_ptr<evp_cipher_ctx_st, ContextDeleter> context_;  // null: no such key or IV
};

}  // namespace korvane
