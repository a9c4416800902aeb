// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace korvane::sandbox {

/// A card that forces a failure by its id alone, as if a fault rule for it were
/// always in force. Beside that it is a card like any other: it has a PIN, is
/// frozen and activated.
struct MagicCard {
    std::string_view id;
    std::string_view status;
    std::string_view fault;  ///< its rule but for card and count
    std::string_view does;   ///< for whoever chooses one
};

std::span<const MagicCard> magicCards();

bool isMagic(std::string_view id);

/// The whole rule, as JSON.
std::string magicRule(const MagicCard& card);

}  // namespace korvane::sandbox
