// SPDX-License-Identifier: Apache-2.0
#include "sdk/eKorvaneCardType.h"

#include <korvane/platform/Ports.h>

#include <array>

#include "base/Text.h"

namespace korvane {
namespace {

struct Row {
    std::string_view text;
    std::string_view caseName;
    std::string_view displayKey;
};

constexpr std::array<Row, 5> rows{{
    {"", ".none", ""},
    {"physical", ".physical", "sdk.cardtype.physical"},
    {"virtual", ".virtual", "sdk.cardtype.virtual"},
    {"wearable", ".wearable", "sdk.cardtype.wearable"},
    {"paywallet", ".paywallet", "sdk.cardtype.paywallet"},
}};

const Row& row(eKorvaneCardType type) {
    return rows[static_cast<std::size_t>(type)];
}

}  // namespace

std::optional<eKorvaneCardType> cardTypeFromText(std::string_view text) {
    for (std::size_t i = 1; i < rows.size(); ++i) {
        if (equalIgnoringCase(text, rows[i].text)) return static_cast<eKorvaneCardType>(i);
    }
    return std::nullopt;
}

std::string_view cardTypeCaseName(eKorvaneCardType type) {
    return row(type).caseName;
}

std::string_view cardTypeDisplayKey(eKorvaneCardType type) {
    return row(type).displayKey;
}

std::string cardTypeDisplayName(eKorvaneCardType type) {
    const std::string_view key = cardTypeDisplayKey(type);
    return key.empty() ? std::string{} : ports().stringTable->text(key);
}

}  // namespace korvane
