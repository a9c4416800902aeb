// SPDX-License-Identifier: Apache-2.0
#include "operations/OperationEngine.h"

namespace korvane {

Handle doPinSet(StatePtr state, std::string pin, OperationCompletion completion) {
    static const OperationDescription description{
        .name = "doPinSet",
        .endpoint = "pinSet",
        .values = {{&JourneyState::cardId, "cardId = "},
                   {0u, "pin = "},
                   {&SdkConfig::currentPciToken, "currentPciToken = "}},
        .send = sendTo<RestPinSet, &API::pinSet, 3>,
        .printsValues = true,
        .noReplyMsg = "api.getCardStatus resp is nil",  // names another operation (deliberate)
        .noResultMsg = "Encrypted result nil",
    };
    return runOperation(description, std::move(state), argumentsFrom({pin}), std::move(completion));
}

// The three activations leave the text of a missing reply and of a missing result empty (deliberate).

Handle doActivatePhysicalCardAndSetPIN(StatePtr state, std::string lastFourOfPan, std::string cvv,
                                       std::string pin, OperationCompletion completion) {
    static const OperationDescription description{
        .name = "doActivatePhysicalCardAndSetPIN",
        .endpoint = "physicalCardActivationAndPinSet",
        .values = {{&JourneyState::cardId, "cardId = "},
                   {0u, "lastFourOfPan = "},
                   {1u, "cvv = "},
                   {2u, "pin = "},
                   {&SdkConfig::currentPciToken, "currentPciToken = "}},
        .send = sendTo<RestPhysicalCardActivationAndPinSet, &API::physicalCardActivationAndPinSet, 5>,
        .printsSeparator = true,
        .printsValues = true,
    };
    return runOperation(description, std::move(state), argumentsFrom({lastFourOfPan, cvv, pin}),
                        std::move(completion));
}

Handle doActivateVirtualCardAndSetPIN(StatePtr state, std::string pin, OperationCompletion completion) {
    static const OperationDescription description{
        .name = "doActivateVirtualCardAndSetPIN",
        .endpoint = "virtualCardActivationAndPinSet",
        .values = {{&JourneyState::cardId, "cardId = "},
                   {0u, "pin = "},
                   {&SdkConfig::currentPciToken, "currentPciToken = "}},
        .send = sendTo<RestVirtualCardActivationAndPinSet, &API::virtualCardActivationAndPinSet, 3>,
        .printsSeparator = true,
        .printsValues = true,
    };
    return runOperation(description, std::move(state), argumentsFrom({pin}), std::move(completion));
}

Handle doActivateWearableCardAndSetPIN(StatePtr state, std::string pin, OperationCompletion completion) {
    static const OperationDescription description{
        .name = "doActivateWearableCardAndSetPIN",
        .endpoint = "wearableCardActivationAndPinSet",
        .values = {{&JourneyState::cardId, "cardId = "},
                   {0u, "pin = "},
                   {&SdkConfig::currentPciToken, "currentPciToken = "}},
        .send = sendTo<RestWearableCardActivationAndPinSet, &API::wearableCardActivationAndPinSet, 3>,
        .printsSeparator = true,
        .printsValues = true,
    };
    return runOperation(description, std::move(state), argumentsFrom({pin}), std::move(completion));
}

}  // namespace korvane
