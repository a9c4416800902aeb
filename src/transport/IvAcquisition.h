// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Handle.h"
#include "sdk/KorvaneRetStruct.h"

namespace korvane {

class SdkConfig;

/// True when `config` holds an IV: its id is not empty and it has at least one byte.
bool ivAtHand(const SdkConfig& config);

/// Why an IV is asked for.
enum class IvReason {
    noneHeld,  ///< no operation has had one yet
    refused    ///< the service refused the one that is held: it is thrown away first
};

/// Runs once on the main queue, never from inside `obtainIv`: with none when a good IV is stored, else with
/// the record of the failure ("ivId is nil", "iv is nil", …; "resStructIv is nil" when the host never
/// answers).
using IvCompletion = std::function<void(std::optional<KorvaneRetStruct> failure)>;

/// Asks the host for an IV and stores a good one in `config`; the one way to an IV. The host may answer on
/// any thread; its first answer counts. An empty callback counts as an answer without an id; a callback that
/// throws and a host that releases the reply unanswered count as no answer. A host that keeps the reply for
/// ever keeps the caller waiting. Once the handle is released a late answer stores nothing. Main thread.
[[nodiscard]] Handle obtainIv(SdkConfig& config, IvReason reason, IvCompletion completion);

/// Checks the host's answer and stores it in `config`, then calls the completion. The decoded IV may have any
/// length: the field cipher refuses a wrong one. Main thread.
void doIvCallbackAndDecoding(
    SdkConfig& config, const std::optional<std::string>& ivId, const std::optional<std::string>& iv,
    const std::shared_ptr<KorvaneRetStruct>& result,
    const std::function<void(std::optional<std::string>, std::optional<std::vector<std::uint8_t>>,
                             KorvaneRetStruct)>& completion);

/// Result words by which the service refuses an IV, compared without regard to case.
bool isExpiredIvWord(std::string_view resultWord);
bool isInvalidIvWord(std::string_view resultWord);

}  // namespace korvane
