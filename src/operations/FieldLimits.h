// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "sdk/DecryptedCardDisclosure.h"

namespace korvane {

/// Bounds on the deciphered texts that are drawn, generous for their meaning. What is longer is hostile or a
/// defect of the service, and would hold the main thread while it is laid out.
struct FieldLimit {
    std::string_view field;  ///< as console lines name it: "FirstName"
    std::size_t characters;  ///< Unicode code points, an ellipsis included
};

inline constexpr FieldLimit fieldLimits[] = {
    {"Pan", 32},         {"Cvv", 8},          {"ExpiryDate", 32},
    {"FirstName", 200},  {"MiddleName", 200}, {"LastName", 200},
    {"CardNetwork", 64}, {"Language", 64},    {"CardDisclosure", 32'768},
};
inline constexpr std::size_t maxDisclosures = 16;
inline constexpr std::size_t wearableNameLimit = 200;  ///< for the host's name of a wearable

/// The text in at most so many characters, of which "…" is one when it replaces the rest. Whole characters of
/// UTF-8 are kept.
std::string cutText(std::string_view text, std::size_t characters);

/// Cuts `text` to the limit of `field`, which must have one, and logs a line then. The original is wiped.
void limitField(std::string_view field, std::string& text);

/// The same for the texts of each disclosure; drops those behind `maxDisclosures`.
void limitDisclosures(DecryptedCardDisclosure& disclosures);

}  // namespace korvane
