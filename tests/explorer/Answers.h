// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "tests/support/ScriptedService.h"

namespace korvane::explorer {

/// A host's calls of the reply function, id, then IV; none when it lets go of it.
using IvReplies = std::vector<std::pair<std::optional<std::string>, std::optional<std::string>>>;

/// What the reader says, and what the secure store answers when it is read thereafter.
struct Finger {
    bool match;
    std::deque<SecureItemStatus> store = {};
};

/// One way in which the service, the host or the reader ends what is waited for.
struct Answer {
    std::string name;
    std::variant<UrlReply, IvReplies, Finger> content;
    bool basic = false;      ///< given in any scope
    std::string fault = {};  ///< as a rule of the sandbox, without its endpoint; "" when it has none
    bool success = false;    ///< all that was asked for
    std::string card = {};   ///< the sandbox' card of which this tells
};

/// A request without a PCI token is answered with it, as by any service.
inline constexpr const char* tokenRefused = "200 \"fAILURE: iNVALID tOKEN\"";

/// What may come back: to a request, by its method ("getCardStatus"), to the host's "iv", to the "finger".
/// The first one is a success. They are made once.
const std::vector<Answer>& answersTo(const std::string& waiting, const ScriptedService& service);

}  // namespace korvane::explorer
