// SPDX-License-Identifier: Apache-2.0
#include "transport/FieldCipher.h"

#include <algorithm>
#include <array>

#include "base/Base64.h"
#include "base/Secret.h"
#include "base/Text.h"
#include "sdk/SdkConfig.h"
#include "transport/AesCbc.h"

namespace korvane {
namespace {

/// A long text goes through all its steps piece by piece, while the piece lies in the first-level cache: that
/// saves a third of the time of step after step over the whole, and all buffers of its size but its own.
/// Whole groups of base64, which are whole blocks when enciphered bytes come in this size.
constexpr std::size_t pieceSize = 3 * 4 * 1024;

/// Puts the plain bytes in the place of the base64 text that they were; the size they have, none on failure.
/// They never reach what is still to be read, since each piece is shorter than its base64 text.
std::optional<std::size_t> decipherInPlace(AesCbc cipher, std::string& text, bool& ascii) {
    std::array<std::uint8_t, pieceSize> piece;  // enciphered bytes alone: nothing to wipe
    auto* const plain = reinterpret_cast<std::uint8_t*>(text.data());
    std::size_t written = 0;
    constexpr std::size_t step = pieceSize / 3 * 4;
    for (std::size_t at = 0; at < text.size(); at += step) {
        const std::string_view base64 = std::string_view{text}.substr(at, step);
        const auto size = base64Decode(base64, piece.data());
        const bool padded = size && *size < base64Room(base64);
        if (!size || (padded && at + base64.size() < text.size())) return std::nullopt;
        const auto more = cipher.update({piece.data(), *size}, plain + written);
        if (!more) return std::nullopt;
        ascii = ascii && isAscii({text.data() + written, *more});
        written += *more;
    }
    const auto last = cipher.finish(plain + written);
    if (!last) return std::nullopt;
    ascii = ascii && isAscii({text.data() + written, *last});
    return written + *last;
}

const std::vector<std::uint8_t>& preSharedKey() {
    return SdkConfig::sharedInstance().preSharedKeyByteArray;
}

}  // namespace

std::string encryptField(const std::vector<std::uint8_t>& iv, std::string_view text) {
    const std::vector<std::uint8_t>& key = preSharedKey();
    // Checked here in this direction alone (deliberate): deciphering leaves the lengths to the cipher.
    if ((key.size() != 16 && key.size() != 24 && key.size() != 32) || iv.size() != 16) return {};
    // Nothing to wipe in either. What is sent is short: on the stack it saves one allocation in two.
    std::array<std::uint8_t, 256> few;
    std::vector<std::uint8_t> many(
        text.size() + AesCbc::blockSize > few.size() ? text.size() + AesCbc::blockSize : 0);
    std::uint8_t* const cipher = many.empty() ? few.data() : many.data();
    const auto size =
        aesCbcEncrypt(key, iv, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}, cipher);
    return size ? base64Encode({cipher, *size}) : std::string{};
}

void decryptFieldInPlace(const std::vector<std::uint8_t>& iv, std::string& text) {
    bool ascii = true;
    const auto size = decipherInPlace(AesCbc{AesCbc::Direction::decrypt, preSharedKey(), iv}, text, ascii);
    if (!size) return wipe(text);
    text.resize(*size);
    if (ascii || isUtf8(text)) return;
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    std::string decoded = utf8FromUtf16({bytes, text.size()}).value_or("");
    wipe(text);
    text = std::move(decoded);
}

std::string decryptField(const std::vector<std::uint8_t>& iv, std::string_view base64Text) {
    std::string text{base64Text};
    decryptFieldInPlace(iv, text);
    return text;
}

}  // namespace korvane
