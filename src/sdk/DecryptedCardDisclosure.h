// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace korvane {

struct DecryptedCardDisclosureItem {
    std::optional<std::string> Language;
    std::optional<std::string> CardDisclosure;
};

struct DecryptedCardDisclosure {
    std::optional<std::vector<DecryptedCardDisclosureItem>> CardDisclosures;
};

}  // namespace korvane
