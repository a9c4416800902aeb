// SPDX-License-Identifier: Apache-2.0
#include "transport/API.h"

#include <initializer_list>
#include <utility>

#include "sdk/SdkConfig.h"
#include "transport/AuthenticatedCall.h"
#include "transport/Endpoints.h"

namespace korvane {
namespace {

std::string urlOf(EndpointId id) {
    return SdkConfig::sharedInstance().apiUrl + std::string{endpoint(id).path};
}

/// The lines that a method prints each time it sends.
void logSending(EndpointId id, const TextMap& body) {
    if (endpoint(id).printsBody) {
        const auto json = encodeTexts(body);
        const auto* text = std::get_if<std::string>(&json);
        log({inClear(endpoint(id).method),
             " request dictionary: ", text ? std::string_view(*text) : std::string_view{}});
    }
    if (id == EndpointId::getCardStatus) {
        // The tokens are printed in clear (deliberate).
        log("Inside getCardStatus api level...");
        log({"Current bearer token: ", SdkConfig::sharedInstance().currentBearerToken});
        log({"Current PCI token: ", SdkConfig::sharedInstance().currentPciToken});
    }
}

/// Calls an endpoint by its row: `values` are the enciphered texts of the row's keys.
template <class Record>
CancelHandle call(EndpointId id, const std::string& url, const std::string& ivId,
                  std::initializer_list<std::string_view> values, Completion<Record> completion) {
    TextMap body;
    body.set("offsetId", ivId);
    auto key = endpoint(id).keys.begin();
    for (const std::string_view value : values) body.set(*key++, std::string{value});

    const auto send = [id, url, body = std::move(body), completion](std::optional<std::string> authorization,
                                                                    ReAuthClosure reAuthClosure) {
        logSending(id, body);
        return doRequest<Record>({url, "POST", body, std::move(authorization)}, std::move(reAuthClosure),
                                 completion);
    };
    const auto failed = [completion](CallError error) { completion(std::nullopt, std::move(error)); };
    return endpoint(id).bearer ? startAuthenticatedCall(endpoint(id), send, failed)
                               : send(std::nullopt, failed);
}

}  // namespace

API::API()
    : bearerTokenUrl(urlOf(EndpointId::bearerToken)),
      pciTokenRequestUrl(urlOf(EndpointId::pciTokenRequest)),
      pciTokenSubmissionUrl(urlOf(EndpointId::pciTokenSubmission)),
      pinSetUrl(urlOf(EndpointId::pinSet)),
      getCardStatusUrl(urlOf(EndpointId::getCardStatus)),
      setCardStatusUrl(urlOf(EndpointId::setCardStatus)),
      cardImageUrl(urlOf(EndpointId::cardImage)),
      physicalCardActivationAndPinSetUrl(urlOf(EndpointId::physicalCardActivationAndPinSet)),
      virtualCardActivationAndPinSetUrl(urlOf(EndpointId::virtualCardActivationAndPinSet)),
      wearableCardActivationAndPinSetUrl(urlOf(EndpointId::wearableCardActivationAndPinSet)) {}

CancelHandle API::getBearerToken(const std::string& ivId, const std::string& cardId,
                                 const std::string& username, const std::string& password,
                                 Completion<RestBearerToken> completion) {
    return call(EndpointId::bearerToken, bearerTokenUrl, ivId, {cardId, username, password},
                std::move(completion));
}

CancelHandle API::pciTokenRequest(const std::string& ivId, const std::string& cardId,
                                  Completion<RestPciTokenRequest> completion) {
    return call(EndpointId::pciTokenRequest, pciTokenRequestUrl, ivId, {cardId}, std::move(completion));
}

CancelHandle API::pciTokenSubmission(const std::string& ivId, const std::string& cardId,
                                     const std::string& pciSmsToken, const std::string& twoFactorCode,
                                     const std::string& useBiometrics,
                                     Completion<RestPciTokenSubmission> completion) {
    return call(EndpointId::pciTokenSubmission, pciTokenSubmissionUrl, ivId,
                {cardId, pciSmsToken, twoFactorCode, useBiometrics}, std::move(completion));
}

CancelHandle API::pinSet(const std::string& ivId, const std::string& cardId, const std::string& pin,
                         const std::string& pciToken, Completion<RestPinSet> completion) {
    return call(EndpointId::pinSet, pinSetUrl, ivId, {cardId, pin, pciToken}, std::move(completion));
}

CancelHandle API::getCardStatus(const std::string& ivId, const std::string& cardId,
                                const std::string& pciToken, Completion<RestGetCardStatus> completion) {
    return call(EndpointId::getCardStatus, getCardStatusUrl, ivId, {cardId, pciToken}, std::move(completion));
}

CancelHandle API::setCardStatus(const std::string& ivId, const std::string& cardId, const std::string& status,
                                const std::string& pciToken, Completion<RestSetCardStatus> completion) {
    return call(EndpointId::setCardStatus, setCardStatusUrl, ivId, {cardId, status, pciToken},
                std::move(completion));
}

CancelHandle API::getCardImage(const std::string& ivId, const std::string& cardId,
                               const std::string& pciToken, Completion<RestGetCardImage> completion) {
    return call(EndpointId::cardImage, cardImageUrl, ivId, {cardId, pciToken}, std::move(completion));
}

CancelHandle API::physicalCardActivationAndPinSet(
    const std::string& ivId, const std::string& cardId, const std::string& lastFourOfPan,
    const std::string& cvv, const std::string& pin, const std::string& pciToken,
    Completion<RestPhysicalCardActivationAndPinSet> completion) {
    return call(EndpointId::physicalCardActivationAndPinSet, physicalCardActivationAndPinSetUrl, ivId,
                {cardId, cvv, pin, lastFourOfPan, pciToken}, std::move(completion));
}

CancelHandle API::virtualCardActivationAndPinSet(const std::string& ivId, const std::string& cardId,
                                                 const std::string& pin, const std::string& pciToken,
                                                 Completion<RestVirtualCardActivationAndPinSet> completion) {
    return call(EndpointId::virtualCardActivationAndPinSet, virtualCardActivationAndPinSetUrl, ivId,
                {cardId, pin, pciToken}, std::move(completion));
}

CancelHandle API::wearableCardActivationAndPinSet(
    const std::string& ivId, const std::string& cardId, const std::string& pin, const std::string& pciToken,
    Completion<RestWearableCardActivationAndPinSet> completion) {
    return call(EndpointId::wearableCardActivationAndPinSet, wearableCardActivationAndPinSetUrl, ivId,
                {cardId, pin, pciToken}, std::move(completion));
}

}  // namespace korvane
