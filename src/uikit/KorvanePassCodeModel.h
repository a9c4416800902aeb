// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "base/Secret.h"

namespace korvane {

/// What was typed into a row of digit boxes. It holds the only copy of the digits and wipes it when it goes.
struct KorvanePassCodeModel {
    /// Matches a *weak* PIN, the other way round from its name (deliberate).
    static constexpr std::string_view goodPINRegex =
        R"(^.(\d)\1{1,}|0123|1234|2345|3456|4567|5678|6789|0987|9876|8765|7654|6543|5432|4321|3210)";

    bool isValid = false;  ///< every box holds a digit
    std::string passCodeString;

    KorvanePassCodeModel() = default;
    KorvanePassCodeModel(const KorvanePassCodeModel&) = delete;
    KorvanePassCodeModel& operator=(const KorvanePassCodeModel&) = delete;
    ~KorvanePassCodeModel() { wipe(passCodeString); }
};

/// True when `goodPINRegex` is found anywhere in the PIN.
bool isWeakPIN(const std::string& pin);

}  // namespace korvane
