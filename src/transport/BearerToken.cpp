// SPDX-License-Identifier: Apache-2.0
#include "transport/BearerToken.h"

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>

#include "base/Base64.h"
#include "base/Secret.h"
#include "platform/Log.h"
#include "sdk/SdkConfig.h"
#include "transport/API.h"
#include "transport/Backoff.h"
#include "transport/FieldCipher.h"
#include "transport/IvAcquisition.h"

namespace korvane {
namespace {

/// Whether the token can follow "Bearer " in a header: no control character (RFC 9110, 5.5), and no blank
/// around it, which would not arrive (RFC 9113, 8.2.1). One that cannot would make every later request fail.
bool canStandInHeader(std::string_view token) {
    const auto isControl = [](unsigned char c) { return c < 0x20 || c == 0x7F; };
    return !token.starts_with(' ') && !token.ends_with(' ') && std::ranges::none_of(token, isControl);
}

using RenewalCompletion = std::function<void(std::optional<KorvaneRetStruct>)>;

class Renewal final : public std::enable_shared_from_this<Renewal> {
  public:
    Renewal(SdkConfig& config, std::string cardId, RenewalCompletion completion)
        : config_(config), cardId_(std::move(cardId)), completion_(std::move(completion)) {}

    void start() {
        log("inside refreshBearerToken( ... )");
        if (!ivAtHand(config_)) {
            log("need to get new iv...");
            getIvAndStartAgain(IvReason::noneHeld,
                               "got iv.. now recalling the method... refreshBearerToken...");
            return;
        }
        log("have iv (now?)... use it:");
        log("refreshBearerToken(...) on track...");
        iv_ = config_.ivByteArray;
        const Wiped username{base64Encode(config_.preSharedKeyByteArray)};
        const Wiped password{base64Encode(iv_)};
        log({"cardId: ", cardId_});
        const std::string encCardId = encryptField(iv_, cardId_);
        log({"encrypted cardId: ", encCardId});
        const std::string encUsername = encryptField(iv_, *username);
        log({"encryptedUsername = ", encUsername});
        const std::string encPassword = encryptField(iv_, *password);
        log({"encryptedPassword = ", encPassword});
        API api(config_, cardId_);
        underWay_ =
            api.getBearerToken(config_.ivIdStr, encCardId, encUsername, encPassword,
                               [weak = weak_from_this()](const std::optional<RestBearerToken>& response,
                                                         const std::optional<CallError>& error) {
                                   const auto self = weak.lock();
                                   if (!self) return;
                                   error ? self->failed(*error) : self->answered(*response);
                               });
    }

  private:
    void getIvAndStartAgain(IvReason reason, std::string_view line) {
        underWay_ = obtainIv(config_, reason,
                             [weak = weak_from_this(), line](std::optional<KorvaneRetStruct> failure) {
                                 const auto self = weak.lock();
                                 if (!self) return;
                                 if (failure) return self->finish(std::move(failure));
                                 log(inClear(line));
                                 self->backoff_.repeat(self->underWay_, [weak] {
                                     if (const auto again = weak.lock()) again->start();
                                 });
                             });
    }

    /// True when the word says that the IV was refused: then a new one is on its way, and another run behind
    /// it.
    bool recoverFrom(std::string_view resultWord) {
        if (isExpiredIvWord(resultWord)) {
            log(inClear(resultWord));
            getIvAndStartAgain(
                IvReason::refused,
                "iv expired: Got new iv -- re-calling self.refreshBearerToken() -- refreshBearerToken()");
            return true;
        }
        if (isInvalidIvWord(resultWord)) {
            log(inClear(resultWord));
            getIvAndStartAgain(IvReason::refused,
                               "iv invalid: Got new iv -- self.refreshBearerToken() -- refreshBearerToken()");
            return true;
        }
        return false;
    }

    void answered(const RestBearerToken& response) {
        KorvaneRetStruct failure;
        failure.error = true;
        if (response.encryptedAccessToken) {
            log({"theEncAccToken: ", *response.encryptedAccessToken});
            std::string token = decryptField(iv_, *response.encryptedAccessToken);
            log({"decAccessToken: ", token});
            if (!canStandInHeader(token)) {
                failure.errorMsg = "the bearer token cannot stand in a header";
                log("the bearer token cannot stand in a header: it has a control character, or a blank at an "
                    "end");
                wipe(token);
            } else if (!token.empty()) {
                log({"Setting SdkConfig.sharedInstance.currentBearerToken to ", token});
                wipe(config_.currentBearerToken);
                config_.currentBearerToken = std::move(token);
                return finish(std::nullopt);
            }
        }
        std::string word = decryptField(iv_, response.encryptedResult.value_or(""));
        if (recoverFrom(word)) return;
        if (failure.errorMsg.empty()) failure.errorMsg = std::move(word);
        finish(std::move(failure));
    }

    void failed(const CallError& error) {
        log("api.refreshBearerToken err != nil");
        const auto payload = payloadOf(error, iv_);
        if (!payload) {
            log("err has response with no data (no biggie)");
        } else {
            log("err response HAS Data !");
            log({"theEncErrResult: ", payload->enciphered});
            if (recoverFrom(payload->deciphered)) return;
        }
        finish(handleNon200or401(config_, error, payload.value_or(ErrorPayload{})));
    }

    void finish(std::optional<KorvaneRetStruct> failure) {
        if (completion_) std::exchange(completion_, nullptr)(std::move(failure));
    }

    SdkConfig& config_;
    const std::string cardId_;
    RenewalCompletion completion_;
    std::vector<std::uint8_t> iv_;  // of the request under way: its answer is deciphered with the same
    Backoff backoff_;
    Handle underWay_;  // the request, the question for an IV, or a wait
};

}  // namespace

Handle refreshBearerToken(SdkConfig& config, std::string cardId, RenewalCompletion completion) {
    auto renewal = std::make_shared<Renewal>(config, std::move(cardId), std::move(completion));
    renewal->start();
    return renewal;
}

}  // namespace korvane
