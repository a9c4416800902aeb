// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvane {

enum class eKorvaneCardType { none, physical, virtual_, wearable, paywallet };

/// The type named by the service's text, whatever the case of its letters; none of the four words gives none.
std::optional<eKorvaneCardType> cardTypeFromText(std::string_view text);

/// ".physical", as console lines print it.
std::string_view cardTypeCaseName(eKorvaneCardType type);

/// Localization key of the type's display name; "" for `none`, whose display name is empty.
std::string_view cardTypeDisplayKey(eKorvaneCardType type);

/// The display name in the component's language; "" for `none`. Main thread.
std::string cardTypeDisplayName(eKorvaneCardType type);

}  // namespace korvane
