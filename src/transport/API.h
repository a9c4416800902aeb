// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "transport/Endpoints.h"
#include "transport/RequestCore.h"
#include "transport/WireRecords.h"

namespace korvane {

/// The client of the card service for one card: one method an endpoint. A 401 answer renews the bearer token
/// and repeats the call, without limit (deliberate). A call does not need its `API` object once it was
/// started; releasing its handle ends it. Main thread.
///
/// `ivId` names the IV under which the caller enciphered the other values.
class API {
  public:
    /// The URLs are those of `SdkConfig.apiUrl` as it stands now. `plainCardId` is what a renewal of the
    /// bearer token sends.
    API(SdkConfig& config, std::string plainCardId);
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
    [[nodiscard]] Handle getBearerToken(const std::string& ivId, const std::string& cardId,
                                        const std::string& username, const std::string& password,
                                        Completion<RestBearerToken> completion);
    [[nodiscard]] Handle pciTokenRequest(const std::string& ivId, const std::string& cardId,
                                         Completion<RestPciTokenRequest> completion);
    [[nodiscard]] Handle pciTokenSubmission(const std::string& ivId, const std::string& cardId,
                                            const std::string& pciSmsToken, const std::string& twoFactorCode,
                                            const std::string& useBiometrics,
                                            Completion<RestPciTokenSubmission> completion);
    [[nodiscard]] Handle pinSet(const std::string& ivId, const std::string& cardId, const std::string& pin,
                                const std::string& pciToken, Completion<RestPinSet> completion);
    [[nodiscard]] Handle getCardStatus(const std::string& ivId, const std::string& cardId,
                                       const std::string& pciToken, Completion<RestGetCardStatus> completion);
    [[nodiscard]] Handle setCardStatus(const std::string& ivId, const std::string& cardId,
                                       const std::string& status, const std::string& pciToken,
                                       Completion<RestSetCardStatus> completion);
    [[nodiscard]] Handle getCardImage(const std::string& ivId, const std::string& cardId,
                                      const std::string& pciToken, Completion<RestGetCardImage> completion);
    [[nodiscard]] Handle physicalCardActivationAndPinSet(
        const std::string& ivId, const std::string& cardId, const std::string& lastFourOfPan,
        const std::string& cvv, const std::string& pin, const std::string& pciToken,
        Completion<RestPhysicalCardActivationAndPinSet> completion);
    [[nodiscard]] Handle virtualCardActivationAndPinSet(
        const std::string& ivId, const std::string& cardId, const std::string& pin,
        const std::string& pciToken, Completion<RestVirtualCardActivationAndPinSet> completion);
    [[nodiscard]] Handle wearableCardActivationAndPinSet(
        const std::string& ivId, const std::string& cardId, const std::string& pin,
        const std::string& pciToken, Completion<RestWearableCardActivationAndPinSet> completion);

  private:
    template <class Record>
    Handle call(EndpointId id, const std::string& url, const std::string& ivId,
                std::initializer_list<std::string_view> values, Completion<Record> completion);

    SdkConfig& config_;
    const std::string plainCardId_;
};

}  // namespace korvane
