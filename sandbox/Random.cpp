// SPDX-License-Identifier: Apache-2.0
#include "sandbox/Random.h"

#include <openssl/rand.h>
#include <openssl/sha.h>

#include <array>
#include <stdexcept>

namespace korvane::sandbox {

std::vector<std::uint8_t> Random::bytes(std::size_t count) {
    std::vector<std::uint8_t> result(count);
    if (!seed_) {
        if (RAND_bytes(result.data(), static_cast<int>(count)) != 1) {
            throw std::runtime_error("the system's random source failed");
        }
        return result;
    }
    // SHA-256 in counter mode: the same on every machine, unlike the standard library's distributions.
    std::size_t filled = 0;
    while (filled < count) {
        std::array<std::uint8_t, 16> input;
        for (std::size_t i = 0; i < 8; ++i) {
            input[i] = static_cast<std::uint8_t>(*seed_ >> 8 * i);
            input[8 + i] = static_cast<std::uint8_t>(blocks_ >> 8 * i);
        }
        ++blocks_;
        std::array<std::uint8_t, SHA256_DIGEST_LENGTH> block;
        SHA256(input.data(), input.size(), block.data());
        for (std::size_t i = 0; i < block.size() && filled < count; ++i) result[filled++] = block[i];
    }
    return result;
}

std::string Random::hex(std::size_t count) {
    std::string text;
    for (const std::uint8_t byte : bytes(count)) {
        text += "0123456789abcdef"[byte >> 4];
        text += "0123456789abcdef"[byte & 15];
    }
    return text;
}

std::string Random::digits(std::size_t count) {
    std::string text;
    while (text.size() < count) {
        const std::uint8_t byte = bytes(1)[0];
        if (byte < 250)
            text += static_cast<char>('0' + byte % 10);  // 250 and above would favour small digits
    }
    return text;
}

}  // namespace korvane::sandbox
