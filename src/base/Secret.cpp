// SPDX-License-Identifier: Apache-2.0
#include "base/Secret.h"

#include <openssl/crypto.h>

namespace korvane {

void wipe(std::string& text) {
    // The whole capacity, not the size alone: a text that was cut shorter still holds its old tail.
    text.resize(text.capacity());
    OPENSSL_cleanse(text.data(), text.size());
    text.clear();
}

void wipe(std::vector<std::uint8_t>& bytes) {
    OPENSSL_cleanse(bytes.data(), bytes.size());
    bytes.clear();
}

}  // namespace korvane
