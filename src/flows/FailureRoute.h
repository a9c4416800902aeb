// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

#include "sdk/KorvaneRetStruct.h"

namespace korvane {

/// Where a failure leads a journey, whatever the case of the letters in its text.
struct FailureRoute {
    enum class Road { verifyBySMS, ivExpired, ivInvalid, errorPage };

    Road road = Road::errorPage;
    std::string_view matched;  ///< the text that decided, as the console prints it; empty for the error page
};

/// What the biometric road reports when the stored token could not be read.
inline constexpr std::string_view readFromKeychainFailed =
    "read pci token or bio timeout from keychain failed.";

/// Decides on an operation's failure. When the service refused the request with HTTP 400, 403 or 500, the
/// text that came with the refusal decides in place of the status.
FailureRoute routeOf(const KorvaneRetStruct& failure);

/// True for a 500 that the service should not have given: with no PCI token it is to say "Failure: Invalid
/// Token".
bool isServerErrorOnEmptyToken(const KorvaneRetStruct& failure, std::string_view currentPciToken);

}  // namespace korvane
