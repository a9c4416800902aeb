// SPDX-License-Identifier: Apache-2.0
#include "benchmarks/support/BareCipher.h"

#include <openssl/evp.h>

#include <memory>

#include "benchmarks/support/Fatal.h"

namespace korvane::bench {
namespace {

const unsigned char* bytesOf(std::string_view text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

std::string run(std::string_view in, std::string_view iv, int enciphering) {
    const std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> context(EVP_CIPHER_CTX_new(),
                                                                                  &EVP_CIPHER_CTX_free);
    std::string out(in.size() + 16, '\0');
    auto* const to = reinterpret_cast<unsigned char*>(out.data());
    int size = 0;
    int rest = 0;
    require(EVP_CipherInit_ex(context.get(), EVP_aes_256_cbc(), nullptr, bytesOf(key), bytesOf(iv),
                              enciphering) == 1 &&
                EVP_CipherUpdate(context.get(), to, &size, bytesOf(in), static_cast<int>(in.size())) == 1 &&
                EVP_CipherFinal_ex(context.get(), to + size, &rest) == 1,
            "the cipher failed");
    out.resize(static_cast<std::size_t>(size + rest));
    return out;
}

}  // namespace

std::string encipher(std::string_view plain, std::string_view iv) {
    return run(plain, iv, 1);
}

std::string decipher(std::string_view enciphered, std::string_view iv) {
    return run(enciphered, iv, 0);
}

std::string base64(std::string_view bytes) {
    std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');
    text.resize(static_cast<std::size_t>(EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                                                         bytesOf(bytes), static_cast<int>(bytes.size()))));
    return text;
}

}  // namespace korvane::bench
