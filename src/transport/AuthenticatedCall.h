// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>

#include "transport/Endpoints.h"
#include "transport/RequestCore.h"

namespace korvane {

/// Sends the request once, with this authorization; the completion of the call is bound in it.
using SendOnce = std::function<Handle(std::string authorization, ReAuthClosure reAuthClosure)>;

/// Sends a request with the bearer token. On 401 the token is renewed for `cardId` and the request sent
/// again, for as long as the service answers so. `failed` is the bound completion for the one failure that is
/// not the request's own: a renewal that failed. Main thread.
[[nodiscard]] Handle startAuthenticatedCall(SdkConfig& config, std::string cardId, const Endpoint& endpoint,
                                            SendOnce sendOnce, std::function<void(CallError)> failed);

}  // namespace korvane
