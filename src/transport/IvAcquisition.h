// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sdk/KorvaneRetStruct.h"

namespace korvane {

/// What asking the host for an IV came to. Id and bytes are there only when both were good.
using IvContinuation =
    std::function<void(std::optional<KorvaneRetStruct> result, std::optional<std::string> ivId,
                       std::optional<std::vector<std::uint8_t>> ivBytes)>;

/// True when the shared state holds an IV: its id is not empty and it has at least one byte.
bool ivAtHand();

/// Asks the host for a new IV, stores a good one in the shared state, and runs the continuation on the main
/// queue, never from inside this call. The host may answer on any thread; only its first answer counts. A
/// host that never answers keeps the continuation until it lets go of the reply; it is then released, unrun,
/// on the main queue. A host callback that is empty counts as an answer without an id. Main thread.
void requestIv(IvContinuation continuation);

/// Checks the host's answer and stores it, then calls the completion. The decoded IV may have any length: the
/// field cipher refuses a wrong one. Main thread.
void doIvCallbackAndDecoding(
    const std::optional<std::string>& ivId, const std::optional<std::string>& iv,
    const std::shared_ptr<KorvaneRetStruct>& result,
    const std::function<void(std::optional<std::string>, std::optional<std::vector<std::uint8_t>>,
                             KorvaneRetStruct)>& completion);

/// What an operation that got no IV reports: the acquisition's record, or "resStructIv is nil" without one.
KorvaneRetStruct ivFailure(std::optional<KorvaneRetStruct> result);

/// Result words by which the service refuses an IV, compared without regard to case.
bool isExpiredIvWord(std::string_view resultWord);
bool isInvalidIvWord(std::string_view resultWord);

}  // namespace korvane
