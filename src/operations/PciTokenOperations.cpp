// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "base/Text.h"
#include "custody/AuthenticateBiometric.h"
#include "operations/OperationEngine.h"
#include "platform/Log.h"
#include "transport/FieldCipher.h"

namespace korvane {
namespace {

/// Shortest time in seconds before a token is cleared, and the one taken when the service's text is no
/// number.
constexpr double shortestTimeout = 60;

std::optional<std::string> storeSmsToken(JourneyState& state, RestPciTokenRequest& reply,
                                         const std::vector<std::uint8_t>& iv) {
    if (!reply.encryptedPciSmsToken) return "";
    std::string& token = state.decryptedPciSmsToken;
    log({"theEncPciSmsToken: ", *reply.encryptedPciSmsToken});
    token = decryptField(iv, *reply.encryptedPciSmsToken);
    log({"decPciSmsToken: ", token});
    return std::nullopt;
}

void storeTimeout(SdkConfig& config, const std::string& enciphered, const std::vector<std::uint8_t>& iv,
                  const Stored& stored) {
    log({"theEncBiometricsAuthenticationTimer: ", enciphered});
    const std::string text = decryptField(iv, enciphered);
    log({"decBiometricsAuthenticationTimer: ", text});
    config.decBiometricsAuthenticationTimer =
        decimalText(std::max(decimalNumber(text).value_or(shortestTimeout), shortestTimeout));
    if (!config.useBiometrics) return stored(std::nullopt);
    log("==================");
    log("AuthenticateBiometric.savePciTokenAndTimeoutToKeychain()");
    // The timer starts though the journey may have ended meanwhile, but not for another person's session.
    AuthenticateBiometric::savePciTokenAndTimeoutToKeychain(
        config, [&config, session = std::weak_ptr(config.session), stored](bool saved) {
            if (saved && !session.expired()) {
                log("startPCITokenClearTimer()");
                config.pciTimer.start();
            }
            stored(std::nullopt);
        });
}

void storePciToken(JourneyState& state, RestPciTokenSubmission& reply, const std::vector<std::uint8_t>& iv,
                   const Stored& stored) {
    SdkConfig& config = state.sdk;
    if (!reply.encryptedPciToken) return stored("");
    log({"theEncPciToken: ", *reply.encryptedPciToken});
    config.replacePciToken(decryptField(iv, *reply.encryptedPciToken));
    state.verifiedBySMS = true;
    log({"decPciToken: ", config.currentPciToken});
    if (reply.encryptedPciTokenExpiration) {
        log({"theEncPciTokenExpiration: ", *reply.encryptedPciTokenExpiration});
        config.decPciTokenExpiration = decryptField(iv, *reply.encryptedPciTokenExpiration);
        log({"decPciTokenExpiration: ", config.decPciTokenExpiration});
    }
    if (!reply.encryptedBiometricsAuthenticationTimer) return stored(std::nullopt);
    storeTimeout(config, *reply.encryptedBiometricsAuthenticationTimer, iv, stored);
}

void settleUseBiometric(SdkConfig& config) {
    config.useBiometric = config.useBiometrics ? "true" : "false";
    log({"SdkConfig useBiometrics set to ", inClear(config.useBiometric), " from sdk initialize"});
}

}  // namespace

Handle doPciTokenRequest(StatePtr state, OperationCompletion completion) {
    static const OperationDescription description{
        .name = "doPciTokenRequest",
        .endpoint = "pciTokenRequest",
        .values = {{&JourneyState::cardId}},
        .send = sendTo<RestPciTokenRequest, &API::pciTokenRequest, 1, storeSmsToken>,
        .judgesResult = false,  // no IV recovery either (deliberate)
    };
    return runOperation(description, std::move(state), {}, std::move(completion));
}

Handle doPciTokenSubmission(StatePtr state, OperationCompletion completion) {
    static const OperationDescription description{
        .name = "doPciTokenSubmission",
        .endpoint = "pciTokenSubmission",
        .values = {{&JourneyState::cardId},
                   {&JourneyState::decryptedPciSmsToken},
                   {&JourneyState::twoFactorCode},
                   {&SdkConfig::useBiometric}},
        .send = sendTo<RestPciTokenSubmission, &API::pciTokenSubmission, 4, storePciToken>,
        .beforeSending = settleUseBiometric,
        // A cancelled submission may have used the code up: the SMS screens start over.
        .cancelledLine = "Forcing SMS flow reset...",
        .cancelledMsg = "forceSMSFlowReset",
        .replyLine = "doPciTokenSubmission - got 200 if here...",
        .noReplyMsg = "api.getCardStatus resp is nil",  // names another operation (deliberate)
        .noResultMsg = "Encrypted result nil",
    };
    return runOperation(description, std::move(state), {}, std::move(completion));
}

}  // namespace korvane
