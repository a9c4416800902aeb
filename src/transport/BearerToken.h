// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "base/Handle.h"
#include "sdk/KorvaneRetStruct.h"

namespace korvane {

class SdkConfig;

/// Gets a new bearer token into `SdkConfig.currentBearerToken`, asking the host for an IV first when none is
/// held; an IV that the service refuses is replaced and the renewal runs again, without limit (deliberate).
/// `cardId` is the card that the token is wanted for.
///
/// `completion` runs on the main queue, at most once, never from inside this call: with none on success, else
/// with the failure ("500 error", "ivId is nil", …). An answer without a token that can be deciphered is a
/// failure with its result word as the text; a token that cannot stand in a header is one with a text that
/// says so. Main thread.
[[nodiscard]] Handle refreshBearerToken(
    SdkConfig& config, std::string cardId,
    std::function<void(std::optional<KorvaneRetStruct> failure)> completion);

}  // namespace korvane
