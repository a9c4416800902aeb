// SPDX-License-Identifier: Apache-2.0
#include "transport/FieldCipher.h"

#include <utility>

#include "base/Base64.h"
#include "base/Secret.h"
#include "base/Text.h"
#include "sdk/SdkConfig.h"
#include "transport/AesCbc.h"

namespace korvane {

std::string encryptField(const std::vector<std::uint8_t>& iv, std::string_view text) {
    const std::vector<std::uint8_t>& key = SdkConfig::sharedInstance().preSharedKeyByteArray;
    // Checked here in this direction alone (deliberate): deciphering leaves the lengths to the cipher.
    if ((key.size() != 16 && key.size() != 24 && key.size() != 32) || iv.size() != 16) return {};
    const auto cipher =
        aesCbcEncrypt(key, iv, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    return cipher ? base64Encode(*cipher) : std::string{};
}

std::string decryptField(const std::vector<std::uint8_t>& iv, std::string_view base64Text) {
    const auto cipher = base64Decode(base64Text);
    if (!cipher) return {};
    auto bytes = aesCbcDecrypt(SdkConfig::sharedInstance().preSharedKeyByteArray, iv, *cipher);
    if (!bytes) return {};
    const Wiped plain{*std::move(bytes)};
    const std::string_view text{reinterpret_cast<const char*>(plain->data()), plain->size()};
    if (isUtf8(text)) return std::string{text};
    return utf8FromUtf16(*plain).value_or("");
}

}  // namespace korvane
