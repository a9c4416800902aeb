// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "base/Handle.h"
#include "sdk/JourneyState.h"
#include "sdk/KorvaneRetStruct.h"

namespace korvane {

/// Runs on the main queue, at most once, never from inside the call that started the operation.
using OperationCompletion = std::function<void(KorvaneRetStruct)>;

using StatePtr = std::shared_ptr<JourneyState>;

// Each operation enciphers its values and those of the journey's state under the current IV, asking the host
// for one first when none is held, and calls one endpoint. A refused IV is replaced and the operation runs
// again, without limit (deliberate).
//
// The handle is the owner's right to the completion. When it is released the operation ends: it calls nothing
// back, stores nothing and repeats nothing; a request that carries something out may still finish on the
// wire. Main thread.

[[nodiscard]] Handle doPinSet(StatePtr state, std::string pin, OperationCompletion completion);
[[nodiscard]] Handle doActivatePhysicalCardAndSetPIN(StatePtr state, std::string lastFourOfPan,
                                                     std::string cvv, std::string pin,
                                                     OperationCompletion completion);
[[nodiscard]] Handle doActivateVirtualCardAndSetPIN(StatePtr state, std::string pin,
                                                    OperationCompletion completion);
[[nodiscard]] Handle doActivateWearableCardAndSetPIN(StatePtr state, std::string pin,
                                                     OperationCompletion completion);
[[nodiscard]] Handle doGetCardStatus(StatePtr state, OperationCompletion completion);
/// Stores the card's image and details in the journey's state; a missing one is stored as "". Disclosures
/// that cannot be decoded are no error: `decodedDisclosuresStruct` is none then, and `errorMsg` says so.
[[nodiscard]] Handle doCardImage(StatePtr state, OperationCompletion completion);
[[nodiscard]] Handle doSetCardStatus(StatePtr state, std::string status, OperationCompletion completion);
[[nodiscard]] Handle doPciTokenRequest(StatePtr state, OperationCompletion completion);
[[nodiscard]] Handle doPciTokenSubmission(StatePtr state, OperationCompletion completion);

}  // namespace korvane
