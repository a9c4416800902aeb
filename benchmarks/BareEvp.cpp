// SPDX-License-Identifier: Apache-2.0
#include "benchmarks/BareEvp.h"

#include <openssl/evp.h>

#include <cstdlib>

#include "benchmarks/CardReply.h"

namespace korvane::bench {
namespace {

std::size_t run(int encrypt, std::span<const std::uint8_t> input, std::uint8_t* output) {
    static EVP_CIPHER* const cipher = EVP_CIPHER_fetch(nullptr, "AES-256-CBC", nullptr);
    EVP_CIPHER_CTX* const context = EVP_CIPHER_CTX_new();
    int written = 0;
    int last = 0;
    if (EVP_CipherInit_ex2(context, cipher, key().data(), iv().data(), encrypt, nullptr) != 1 ||
        EVP_CipherUpdate(context, output, &written, input.data(), static_cast<int>(input.size())) != 1 ||
        EVP_CipherFinal_ex(context, output + written, &last) != 1)
        std::abort();
    EVP_CIPHER_CTX_free(context);
    return static_cast<std::size_t>(written + last);
}

}  // namespace

std::size_t bareEncrypt(std::span<const std::uint8_t> input, std::uint8_t* output) {
    return run(1, input, output);
}

std::size_t bareDecrypt(std::span<const std::uint8_t> input, std::uint8_t* output) {
    return run(0, input, output);
}

}  // namespace korvane::bench
