// SPDX-License-Identifier: Apache-2.0
#include "transport/BearerToken.h"

#include <korvane/platform/Ports.h>

#include <memory>
#include <utility>

#include "base/Base64.h"
#include "base/Secret.h"
#include "platform/Log.h"
#include "sdk/SdkConfig.h"
#include "transport/API.h"
#include "transport/FieldCipher.h"
#include "transport/IvAcquisition.h"

namespace korvane {
namespace {

using RenewalCompletion = std::function<void(std::optional<KorvaneRetStruct>)>;

/// Owned by what it waits for: the request's completion, or the continuation that the host holds.
class Renewal final : public Cancellable, public std::enable_shared_from_this<Renewal> {
  public:
    explicit Renewal(RenewalCompletion completion) : completion_(std::move(completion)) {}

    void start() {
        log("inside refreshBearerToken( ... )");
        if (!ivAtHand()) {
            log("need to get new iv...");
            getIvAndStartAgain("got iv.. now recalling the method... refreshBearerToken...");
            return;
        }
        log("have iv (now?)... use it:");
        log("refreshBearerToken(...) on track...");
        const SdkConfig& config = SdkConfig::sharedInstance();
        iv_ = config.ivByteArray;
        const Wiped username{base64Encode(config.preSharedKeyByteArray)};
        const Wiped password{base64Encode(iv_)};
        log({"cardId: ", config.cardId});
        const std::string encCardId = encryptField(iv_, config.cardId);
        log({"encrypted cardId: ", encCardId});
        const std::string encUsername = encryptField(iv_, *username);
        log({"encryptedUsername = ", encUsername});
        const std::string encPassword = encryptField(iv_, *password);
        log({"encryptedPassword = ", encPassword});
        API api;
        request_ =
            api.getBearerToken(config.ivIdStr, encCardId, encUsername, encPassword,
                               [self = shared_from_this()](const std::optional<RestBearerToken>& response,
                                                           const std::optional<CallError>& error) {
                                   self->request_.reset();
                                   error ? self->failed(*error) : self->answered(*response);
                               });
    }

    void cancel() override {
        if (isOver()) return;
        cancelled_ = true;
        if (const auto request = request_.lock()) {
            request->cancel();
        } else {
            ports().mainQueue->post([self = shared_from_this()] { self->failed(cancelledError()); });
        }
    }

  private:
    bool isOver() const { return cancelled_ || !completion_; }

    void getIvAndStartAgain(std::string_view line) {
        requestIv([self = shared_from_this(), line](std::optional<KorvaneRetStruct> result, const auto& ivId,
                                                    const auto& ivBytes) {
            if (self->isOver()) return;
            if (!result || !ivId || !ivBytes) return self->finish(ivFailure(std::move(result)));
            log(inClear(line));
            self->start();
        });
    }

    /// True when the word says that the IV was refused: then a new one is on its way, and another run behind
    /// it.
    bool recoverFrom(std::string_view resultWord) {
        if (isExpiredIvWord(resultWord)) {
            log(inClear(resultWord));
            getIvAndStartAgain(
                "iv expired: Got new iv -- re-calling self.refreshBearerToken() -- refreshBearerToken()");
            return true;
        }
        if (isInvalidIvWord(resultWord)) {
            log(inClear(resultWord));
            getIvAndStartAgain("iv invalid: Got new iv -- self.refreshBearerToken() -- refreshBearerToken()");
            return true;
        }
        return false;
    }

    void answered(const RestBearerToken& response) {
        if (response.encryptedAccessToken) {
            log({"theEncAccToken: ", *response.encryptedAccessToken});
            std::string token = decryptField(iv_, *response.encryptedAccessToken);
            log({"decAccessToken: ", token});
            if (!token.empty()) {
                log({"Setting SdkConfig.sharedInstance.currentBearerToken to ", token});
                SdkConfig::sharedInstance().currentBearerToken = std::move(token);
                return finish(std::nullopt);
            }
        }
        KorvaneRetStruct failure;
        failure.error = true;
        failure.errorMsg = decryptField(iv_, response.encryptedResult.value_or(""));
        if (!recoverFrom(failure.errorMsg)) finish(std::move(failure));
    }

    void failed(const CallError& error) {
        log("api.refreshBearerToken err != nil");
        const auto payload = payloadOf(error, iv_);
        if (!payload) {
            log("err has response with no data (no biggie)");
        } else {
            log("err response HAS Data !");
            log({"theEncErrResult: ", payload->enciphered});
            if (!cancelled_ && recoverFrom(payload->deciphered)) return;
        }
        finish(handleNon200or401(error, payload.value_or(ErrorPayload{})));
    }

    void finish(std::optional<KorvaneRetStruct> failure) {
        if (completion_) std::exchange(completion_, nullptr)(std::move(failure));
    }

    RenewalCompletion completion_;
    std::vector<std::uint8_t> iv_;  // of the request under way: its answer is deciphered with the same
    std::weak_ptr<Cancellable> request_;
    bool cancelled_ = false;
};

}  // namespace

CancelHandle refreshBearerToken(RenewalCompletion completion) {
    auto renewal = std::make_shared<Renewal>(std::move(completion));
    renewal->start();
    return renewal;
}

}  // namespace korvane
