// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "sdk/KorvaneRetStruct.h"

namespace korvane {

/// Runs on the main queue, at most once, never from inside the call that started the operation.
using OperationCompletion = std::function<void(KorvaneRetStruct)>;

/// A started operation. Releasing the handle changes nothing: the operation goes on to its completion.
class OperationHandle {
  public:
    virtual ~OperationHandle() = default;

    /// Gives the operation up: a request under way is cancelled, and the operation ends as a request does
    /// that was cancelled, with code -999. Nothing happens when it has ended. Main thread.
    virtual void cancel() = 0;
};

using Operation = std::shared_ptr<OperationHandle>;

// Each operation enciphers its values and the shared state's under the current IV, asking the host for one
// first when none is held, and calls one endpoint. A refused IV is replaced and the operation runs again,
// without limit (deliberate). Main thread.

Operation doPinSet(std::string pin, OperationCompletion completion);
Operation doActivatePhysicalCardAndSetPIN(std::string lastFourOfPan, std::string cvv, std::string pin,
                                          OperationCompletion completion);
Operation doActivateVirtualCardAndSetPIN(std::string pin, OperationCompletion completion);
Operation doActivateWearableCardAndSetPIN(std::string pin, OperationCompletion completion);
Operation doGetCardStatus(OperationCompletion completion);
/// Stores the card's image and details in the shared state; a missing one is stored as "". Disclosures that
/// cannot be decoded are no error: `decodedDisclosuresStruct` is none then, and `errorMsg` says so.
Operation doCardImage(OperationCompletion completion);
Operation doSetCardStatus(std::string status, OperationCompletion completion);
Operation doPciTokenRequest(OperationCompletion completion);
Operation doPciTokenSubmission(OperationCompletion completion);

}  // namespace korvane
