// SPDX-License-Identifier: Apache-2.0
#include "operations/FieldLimits.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "base/Secret.h"
#include "platform/Log.h"

namespace korvane {
namespace {

/// Bytes of the first `characters` characters of UTF-8; all of them when there are no more.
std::size_t prefixSize(std::string_view text, std::size_t characters) {
    std::size_t at = 0;
    for (; at < text.size(); ++at) {
        const bool begins = (static_cast<unsigned char>(text[at]) & 0xC0) != 0x80;  // RFC 3629, section 3
        if (begins && characters-- == 0) break;
    }
    return at;
}

}  // namespace

std::string cutText(std::string_view text, std::size_t characters) {
    if (prefixSize(text, characters) == text.size()) return std::string(text);
    return std::string(text.substr(0, prefixSize(text, characters - 1))) + "…";
}

void limitField(std::string_view field, std::string& text) {
    const auto* const limit = std::ranges::find(fieldLimits, field, &FieldLimit::field);
    assert(limit != std::end(fieldLimits));
    if (prefixSize(text, limit->characters) == text.size()) return;
    std::string kept = cutText(text, limit->characters);
    wipe(text);
    text = std::move(kept);
    log({"dec", inClear(field), " was cut to ", inClear(std::to_string(limit->characters)), " characters"});
}

void limitDisclosures(DecryptedCardDisclosure& disclosures) {
    if (!disclosures.CardDisclosures) return;
    auto& items = *disclosures.CardDisclosures;
    if (items.size() > maxDisclosures) {
        items.resize(maxDisclosures);
        log({"decCardDisclosures was cut to ", inClear(std::to_string(maxDisclosures)), " disclosures"});
    }
    for (DecryptedCardDisclosureItem& item : items) {
        if (item.Language) limitField("Language", *item.Language);
        if (item.CardDisclosure) limitField("CardDisclosure", *item.CardDisclosure);
    }
}

}  // namespace korvane
