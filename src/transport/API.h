// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "transport/RequestCore.h"
#include "transport/WireRecords.h"

namespace korvane {

/// The component's client of the card service: one method an endpoint. A 401 answer renews the bearer token
/// and repeats the call, without limit (deliberate). A call does not need its `API` object once it was
/// started. Main thread.
///
/// `ivId` names the IV under which the caller enciphered the other values.
class API {
  public:
    /// The URLs are those of `SdkConfig.apiUrl` as it stands now.
    API();
    API(const API&) = delete;
    API& operator=(const API&) = delete;

    const std::string bearerTokenUrl;
    const std::string pciTokenRequestUrl;
    const std::string pciTokenSubmissionUrl;
    const std::string pinSetUrl;
    const std::string getCardStatusUrl;
    const std::string setCardStatusUrl;
    const std::string cardImageUrl;
    const std::string physicalCardActivationAndPinSetUrl;
    const std::string virtualCardActivationAndPinSetUrl;
    const std::string wearableCardActivationAndPinSetUrl;

    int retryMaxTimesOn401 = 5;  // nobody reads these two (deliberate)
    int currentRetryCount = 0;

    /// A 401 answer is an error like any other here: there is nothing to renew the renewal with.
    CancelHandle getBearerToken(const std::string& ivId, const std::string& cardId,
                                const std::string& username, const std::string& password,
                                Completion<RestBearerToken> completion);
    CancelHandle pciTokenRequest(const std::string& ivId, const std::string& cardId,
                                 Completion<RestPciTokenRequest> completion);
    CancelHandle pciTokenSubmission(const std::string& ivId, const std::string& cardId,
                                    const std::string& pciSmsToken, const std::string& twoFactorCode,
                                    const std::string& useBiometrics,
                                    Completion<RestPciTokenSubmission> completion);
    CancelHandle pinSet(const std::string& ivId, const std::string& cardId, const std::string& pin,
                        const std::string& pciToken, Completion<RestPinSet> completion);
    CancelHandle getCardStatus(const std::string& ivId, const std::string& cardId,
                               const std::string& pciToken, Completion<RestGetCardStatus> completion);
    CancelHandle setCardStatus(const std::string& ivId, const std::string& cardId, const std::string& status,
                               const std::string& pciToken, Completion<RestSetCardStatus> completion);
    CancelHandle getCardImage(const std::string& ivId, const std::string& cardId, const std::string& pciToken,
                              Completion<RestGetCardImage> completion);
    CancelHandle physicalCardActivationAndPinSet(const std::string& ivId, const std::string& cardId,
                                                 const std::string& lastFourOfPan, const std::string& cvv,
                                                 const std::string& pin, const std::string& pciToken,
                                                 Completion<RestPhysicalCardActivationAndPinSet> completion);
    CancelHandle virtualCardActivationAndPinSet(const std::string& ivId, const std::string& cardId,
                                                const std::string& pin, const std::string& pciToken,
                                                Completion<RestVirtualCardActivationAndPinSet> completion);
    CancelHandle wearableCardActivationAndPinSet(const std::string& ivId, const std::string& cardId,
                                                 const std::string& pin, const std::string& pciToken,
                                                 Completion<RestWearableCardActivationAndPinSet> completion);
};

}  // namespace korvane
