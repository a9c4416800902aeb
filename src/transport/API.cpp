// SPDX-License-Identifier: Apache-2.0
#include "transport/API.h"

#include <initializer_list>
#include <utility>

#include "platform/Log.h"
#include "sdk/SdkConfig.h"
#include "transport/AuthenticatedCall.h"
#include "transport/Endpoints.h"

namespace korvane {
namespace {

std::string urlOf(const SdkConfig& config, EndpointId id) {
    return config.apiUrl + std::string{endpoint(id).path};
}

/// The lines that a method prints each time it sends.
void logSending(const SdkConfig& config, EndpointId id, const TextMap& body) {
    if (endpoint(id).printsBody) {
        const auto json = encodeTexts(body);
        const auto* text = std::get_if<std::string>(&json);
        log({inClear(endpoint(id).method),
             " request dictionary: ", text ? std::string_view(*text) : std::string_view{}});
    }
    if (id == EndpointId::getCardStatus) {
        // The tokens are printed in clear (deliberate).
        log("Inside getCardStatus api level...");
        log({"Current bearer token: ", config.currentBearerToken});
        log({"Current PCI token: ", config.currentPciToken});
    }
}

}  // namespace

API::API(SdkConfig& config, std::string plainCardId)
    : bearerTokenUrl(urlOf(config, EndpointId::bearerToken)),
      pciTokenRequestUrl(urlOf(config, EndpointId::pciTokenRequest)),
      pciTokenSubmissionUrl(urlOf(config, EndpointId::pciTokenSubmission)),
      pinSetUrl(urlOf(config, EndpointId::pinSet)),
      getCardStatusUrl(urlOf(config, EndpointId::getCardStatus)),
      setCardStatusUrl(urlOf(config, EndpointId::setCardStatus)),
      cardImageUrl(urlOf(config, EndpointId::cardImage)),
      physicalCardActivationAndPinSetUrl(urlOf(config, EndpointId::physicalCardActivationAndPinSet)),
      virtualCardActivationAndPinSetUrl(urlOf(config, EndpointId::virtualCardActivationAndPinSet)),
      wearableCardActivationAndPinSetUrl(urlOf(config, EndpointId::wearableCardActivationAndPinSet)),
      config_(config),
      plainCardId_(std::move(plainCardId)) {}

/// Calls an endpoint by its row: `values` are the enciphered texts of the row's keys.
template <class Record>
Handle API::call(EndpointId id, const std::string& url, const std::string& ivId,
                 std::initializer_list<std::string_view> values, Completion<Record> completion) {
    TextMap body;
    body.set("offsetId", ivId);
    auto key = endpoint(id).keys.begin();
    for (const std::string_view value : values) body.set(*key++, std::string{value});

    const auto send = [&config = config_, id, url, body = std::move(body), completion](
                          std::optional<std::string> authorization, ReAuthClosure reAuthClosure) {
        logSending(config, id, body);
        return doRequest<Record>(config, {url, "POST", body, std::move(authorization), endpoint(id).changes},
                                 std::move(reAuthClosure), completion);
    };
    const auto failed = [completion](CallError error) { completion(std::nullopt, std::move(error)); };
    return endpoint(id).bearer ? startAuthenticatedCall(config_, plainCardId_, endpoint(id), send, failed)
                               : send(std::nullopt, failed);
}

Handle API::getBearerToken(const std::string& ivId, const std::string& cardId, const std::string& username,
                           const std::string& password, Completion<RestBearerToken> completion) {
    return call(EndpointId::bearerToken, bearerTokenUrl, ivId, {cardId, username, password},
                std::move(completion));
}

Handle API::pciTokenRequest(const std::string& ivId, const std::string& cardId,
                            Completion<RestPciTokenRequest> completion) {
    return call(EndpointId::pciTokenRequest, pciTokenRequestUrl, ivId, {cardId}, std::move(completion));
}

Handle API::pciTokenSubmission(const std::string& ivId, const std::string& cardId,
                               const std::string& pciSmsToken, const std::string& twoFactorCode,
                               const std::string& useBiometrics,
                               Completion<RestPciTokenSubmission> completion) {
    return call(EndpointId::pciTokenSubmission, pciTokenSubmissionUrl, ivId,
                {cardId, pciSmsToken, twoFactorCode, useBiometrics}, std::move(completion));
}

Handle API::pinSet(const std::string& ivId, const std::string& cardId, const std::string& pin,
                   const std::string& pciToken, Completion<RestPinSet> completion) {
    return call(EndpointId::pinSet, pinSetUrl, ivId, {cardId, pin, pciToken}, std::move(completion));
}

Handle API::getCardStatus(const std::string& ivId, const std::string& cardId, const std::string& pciToken,
                          Completion<RestGetCardStatus> completion) {
    return call(EndpointId::getCardStatus, getCardStatusUrl, ivId, {cardId, pciToken}, std::move(completion));
}

Handle API::setCardStatus(const std::string& ivId, const std::string& cardId, const std::string& status,
                          const std::string& pciToken, Completion<RestSetCardStatus> completion) {
    return call(EndpointId::setCardStatus, setCardStatusUrl, ivId, {cardId, status, pciToken},
                std::move(completion));
}

Handle API::getCardImage(const std::string& ivId, const std::string& cardId, const std::string& pciToken,
                         Completion<RestGetCardImage> completion) {
    return call(EndpointId::cardImage, cardImageUrl, ivId, {cardId, pciToken}, std::move(completion));
}

Handle API::physicalCardActivationAndPinSet(const std::string& ivId, const std::string& cardId,
                                            const std::string& lastFourOfPan, const std::string& cvv,
                                            const std::string& pin, const std::string& pciToken,
                                            Completion<RestPhysicalCardActivationAndPinSet> completion) {
    return call(EndpointId::physicalCardActivationAndPinSet, physicalCardActivationAndPinSetUrl, ivId,
                {cardId, cvv, pin, lastFourOfPan, pciToken}, std::move(completion));
}

Handle API::virtualCardActivationAndPinSet(const std::string& ivId, const std::string& cardId,
                                           const std::string& pin, const std::string& pciToken,
                                           Completion<RestVirtualCardActivationAndPinSet> completion) {
    return call(EndpointId::virtualCardActivationAndPinSet, virtualCardActivationAndPinSetUrl, ivId,
                {cardId, pin, pciToken}, std::move(completion));
}

Handle API::wearableCardActivationAndPinSet(const std::string& ivId, const std::string& cardId,
                                            const std::string& pin, const std::string& pciToken,
                                            Completion<RestWearableCardActivationAndPinSet> completion) {
    return call(EndpointId::wearableCardActivationAndPinSet, wearableCardActivationAndPinSetUrl, ivId,
                {cardId, pin, pciToken}, std::move(completion));
}

}  // namespace korvane
