// SPDX-License-Identifier: Apache-2.0
#include "operations/OperationEngine.h"

#include "platform/Log.h"
#include "transport/FieldCipher.h"

namespace korvane {
namespace {

std::optional<std::string> storeCardStatus(RestGetCardStatus& reply, const std::vector<std::uint8_t>& iv) {
    SdkConfig& config = SdkConfig::sharedInstance();
    if (!reply.encryptedCardStatus) return "Encrypted card status nil";
    log({"theEncCardStatus: ", *reply.encryptedCardStatus});
    config.decCardStatus = decryptField(iv, *reply.encryptedCardStatus);
    log({"decCardStatus: ", config.decCardStatus});

    if (!reply.encryptedCardType) return "Encrypted card type nil";
    log({"theEncCardType: ", *reply.encryptedCardType});
    const std::string text = decryptField(iv, *reply.encryptedCardType);
    log({"decCardType: ", text});
    if (const auto type = cardTypeFromText(text)) {
        config.currentCardType = *type;
        log({"SdkConfig.sharedInstance.currentCardType = ", inClear(cardTypeCaseName(*type))});
    } else {
        // The line says physical, yet the type stays what it was (deliberate).
        log("Unknown encoded card type, defaulting to .physical");
    }
    return std::nullopt;
}

}  // namespace

Operation doGetCardStatus(OperationCompletion completion) {
    static const OperationDescription description{
        .name = "doGetCardStatus",
        .endpoint = "getCardStatus",
        .values = {{&SdkConfig::cardId}, {&SdkConfig::currentPciToken}},
        .send = sendTo<RestGetCardStatus, &API::getCardStatus, 2, storeCardStatus>,
        .onTrack = "doGetCardStatus(...) on track...",
        .errLine = "api.getCardStatus err != nil",
        .noReplyMsg = "api.getCardStatus resp is nil",
        .noResultMsg = "Encrypted result nil",
    };
    return runOperation(description, {}, std::move(completion));
}

Operation doSetCardStatus(std::string status, OperationCompletion completion) {
    static const OperationDescription description{
        .name = "doSetCardStatus",
        .endpoint = "setCardStatus",
        .values = {{&SdkConfig::cardId}, {0u}, {&SdkConfig::currentPciToken}},
        .send = sendTo<RestSetCardStatus, &API::setCardStatus, 3>,
        .onTrack = "doSetCardStatus(...) on track...",
        .noReplyMsg = "api.getCardStatus resp is nil",  // names another operation (deliberate)
        .noResultMsg = "Encrypted result nil",
    };
    return runOperation(description, argumentsFrom({status}), std::move(completion));
}

}  // namespace korvane
