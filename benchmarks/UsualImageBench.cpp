// SPDX-License-Identifier: Apache-2.0
// The same reply, taken apart as one would with the libraries at hand.
#include <benchmark/benchmark.h>
#include <openssl/evp.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "benchmarks/CardReply.h"

namespace korvane::bench {
namespace {

std::string decodeBase64(const std::string& text) {
    std::string bytes(text.size() / 4 * 3, '\0');
    const int size =
        EVP_DecodeBlock(reinterpret_cast<unsigned char*>(bytes.data()),
                        reinterpret_cast<const unsigned char*>(text.data()), static_cast<int>(text.size()));
    if (size < 0) throw std::runtime_error("no base64");
    // It counts the padding as bytes.
    bytes.resize(static_cast<std::size_t>(size) - (text.ends_with("==") ? 2 : text.ends_with("=") ? 1 : 0));
    return bytes;
}

std::string decipher(const std::string& bytes) {
    const std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> context{EVP_CIPHER_CTX_new(),
                                                                                  &EVP_CIPHER_CTX_free};
    std::string plain(bytes.size() + 16, '\0');
    auto* const out = reinterpret_cast<unsigned char*>(plain.data());
    int size = 0;
    int last = 0;
    if (EVP_DecryptInit_ex(context.get(), EVP_aes_256_cbc(), nullptr, key().data(), iv().data()) != 1 ||
        EVP_DecryptUpdate(context.get(), out, &size, reinterpret_cast<const unsigned char*>(bytes.data()),
                          static_cast<int>(bytes.size())) != 1 ||
        EVP_DecryptFinal_ex(context.get(), out + size, &last) != 1)
        throw std::runtime_error("not deciphered");
    plain.resize(static_cast<std::size_t>(size + last));
    return plain;
}

std::string pictureOf(const std::string& json) {
    const auto document = nlohmann::json::parse(json);
    return decodeBase64(decipher(decodeBase64(document.at("encryptedCardImage").get<std::string>())));
}

void usual(benchmark::State& state) {
    const CardReply& reply = cardReply(usualImage);
    if (pictureOf(reply.json) != std::string(reply.image.begin(), reply.image.end()))
        state.SkipWithError("not the picture");
    for (auto _ : state) benchmark::DoNotOptimize(pictureOf(reply.json));
}
BENCHMARK(usual)->Name("image500k/usual");

}  // namespace
}  // namespace korvane::bench
