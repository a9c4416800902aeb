// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "tests/support/ScriptedService.h"

namespace korvane::explorer {

/// A host's call of the reply function: id, then IV.
using IvTexts = std::pair<std::optional<std::string>, std::optional<std::string>>;

/// One way in which the service, the host or the reader ends what is waited for.
struct Answer {
    std::string name;
    /// The service's answer; the host's replies, none when it lets go of the reply function; the reader's
    /// match.
    std::variant<UrlReply, std::vector<IvTexts>, bool> content;
    std::string fault = {};  ///< as a rule of the sandbox, without its endpoint; "" when it has none
    bool basic = false;      ///< also given in the short form
    bool success = false;    ///< all that was asked for
};

/// What may come back: to a request, by its method ("getCardStatus"), to the host's "iv", to the "finger".
/// The first one is the success. They are made once for each card.
const std::vector<Answer>& answersTo(const std::string& waiting, const ScriptedService& service);

}  // namespace korvane::explorer
