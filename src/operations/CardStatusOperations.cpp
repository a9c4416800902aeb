// SPDX-License-Identifier: Apache-2.0
#include "operations/OperationEngine.h"

#include "platform/Log.h"
#include "transport/FieldCipher.h"

namespace korvane {
namespace {

std::optional<std::string> storeCardStatus(JourneyState& state, RestGetCardStatus& reply,
                                           const std::vector<std::uint8_t>& iv) {
    if (!reply.encryptedCardStatus) return "Encrypted card status nil";
    log({"theEncCardStatus: ", *reply.encryptedCardStatus});
    state.decCardStatus = decryptField(iv, *reply.encryptedCardStatus);
    log({"decCardStatus: ", state.decCardStatus});

    if (!reply.encryptedCardType) return "Encrypted card type nil";
    log({"theEncCardType: ", *reply.encryptedCardType});
    const std::string text = decryptField(iv, *reply.encryptedCardType);
    log({"decCardType: ", text});
    if (const auto type = cardTypeFromText(text)) {
        state.currentCardType = *type;
        log({"SdkConfig.sharedInstance.currentCardType = ", inClear(cardTypeCaseName(*type))});
    } else {
        // The line says physical, yet the type stays what it was (deliberate).
        log("Unknown encoded card type, defaulting to .physical");
    }
    return std::nullopt;
}

}  // namespace

Handle doGetCardStatus(StatePtr state, OperationCompletion completion) {
    static const OperationDescription description{
        .name = "doGetCardStatus",
        .endpoint = "getCardStatus",
        .values = {{&JourneyState::cardId}, {&SdkConfig::currentPciToken}},
        .send = sendTo<RestGetCardStatus, &API::getCardStatus, 2, storeCardStatus>,
        .onTrack = "doGetCardStatus(...) on track...",
        .errLine = "api.getCardStatus err != nil",
        .noReplyMsg = "api.getCardStatus resp is nil",
        .noResultMsg = "Encrypted result nil",
    };
    return runOperation(description, std::move(state), {}, std::move(completion));
}

Handle doSetCardStatus(StatePtr state, std::string status, OperationCompletion completion) {
    static const OperationDescription description{
        .name = "doSetCardStatus",
        .endpoint = "setCardStatus",
        .values = {{&JourneyState::cardId}, {0u}, {&SdkConfig::currentPciToken}},
        .send = sendTo<RestSetCardStatus, &API::setCardStatus, 3>,
        .onTrack = "doSetCardStatus(...) on track...",
        .noReplyMsg = "api.getCardStatus resp is nil",  // names another operation (deliberate)
        .noResultMsg = "Encrypted result nil",
    };
    return runOperation(description, std::move(state), argumentsFrom({status}), std::move(completion));
}

}  // namespace korvane
