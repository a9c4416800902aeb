// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <optional>

#include "sdk/KorvaneRetStruct.h"
#include "transport/Cancellable.h"

namespace korvane {

/// Gets a new bearer token into `SdkConfig.currentBearerToken`, asking the host for an IV first when none is
/// held; an IV that the service refuses is replaced and the renewal runs again, without limit (deliberate).
///
/// `completion` runs on the main queue, at most once, never from inside this call: with none on success, else
/// with what went wrong ("500 error", "ivId is nil", …). An answer without a token that can be deciphered is
/// a failure with its result word as the text. Main thread.
CancelHandle refreshBearerToken(std::function<void(std::optional<KorvaneRetStruct> failure)> completion);

}  // namespace korvane
