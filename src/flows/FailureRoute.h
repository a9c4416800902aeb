// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "base/Handle.h"
#include "sdk/KorvaneRetStruct.h"
#include "transport/Backoff.h"

namespace korvane {

struct JourneyState;

/// Where a failure leads a journey, whatever the case of the letters in its text.
struct FailureRoute {
    enum class Kind { verifyBySMS, ivExpired, ivInvalid, errorPage };

    Kind kind = Kind::errorPage;
    std::string_view matched;  ///< the text that decided, as the console prints it; empty for the error page
};

/// The text of a biometric gate that could not read the stored token.
inline constexpr std::string_view readFromKeychainFailed =
    "read pci token or bio timeout from keychain failed.";

/// Decides on an operation's failure. When the service refused the request with HTTP 400, 403 or 500, the
/// text that came with the refusal decides in place of the status.
FailureRoute routeOf(const KorvaneRetStruct& failure);

/// True for a 500 that the service should not have given: with no PCI token it is to say "Failure: Invalid
/// Token".
bool isServerErrorOnEmptyToken(const KorvaneRetStruct& failure, const JourneyState& state);

/// What a screen does about a failure: one of these runs, once, on the main queue.
struct FailureHandlers {
    std::function<void(std::string_view matched)> verifyBySMS;  ///< the text that decided
    std::function<void(std::string_view reason)>
        runAgain;                  ///< "iv expired" or "iv invalid": a new IV is held
    std::function<void()> giveUp;  ///< any other failure, or the host had no new IV
};

/// What a screen has under way, and how often in a row it recovered from a refused IV.
struct Recovery {
    Handle underWay;
    Backoff backoff;
};

/// Leads a failed operation on: from inside this call, but for `runAgain` and the `giveUp` behind it, which
/// wait for the host's new IV while `recovery.underWay` is held. A refused IV is replaced without limit, for
/// as long as the service refuses and the host supplies (deliberate). `owner` has `recovery` and what the
/// handlers refer to; it lives while a handler runs, even if the host destroys the journey meanwhile. Main
/// thread.
void leadOn(JourneyState& state, const KorvaneRetStruct& failure, const std::shared_ptr<void>& owner,
            Recovery& recovery, FailureHandlers handlers);

}  // namespace korvane
