// SPDX-License-Identifier: Apache-2.0
#include "transport/AuthenticatedCall.h"

#include <memory>
#include <utility>

#include "platform/Log.h"
#include "sdk/SdkConfig.h"
#include "transport/Backoff.h"
#include "transport/BearerToken.h"

namespace korvane {
namespace {

class AuthenticatedCall final : public std::enable_shared_from_this<AuthenticatedCall> {
  public:
    AuthenticatedCall(SdkConfig& config, std::string cardId, const Endpoint& endpoint, SendOnce sendOnce,
                      std::function<void(CallError)> failed)
        : config_(config),
          cardId_(std::move(cardId)),
          endpoint_(endpoint),
          sendOnce_(std::move(sendOnce)),
          failed_(std::move(failed)) {}

    void send() {
        underWay_ =
            sendOnce_("Bearer " + config_.currentBearerToken, [weak = weak_from_this()](const RequestError&) {
                if (const auto self = weak.lock()) self->renew();
            });
    }

  private:
    void renew() {
        log({inClear(endpoint_.method), inClear(endpoint_.reAuthDash),
             "now inside the reAuthClosure... calling refreshBearerToken..."});
        underWay_ = refreshBearerToken(config_, cardId_,
                                       [weak = weak_from_this()](std::optional<KorvaneRetStruct> failure) {
                                           if (const auto self = weak.lock())
                                               self->renewed(std::move(failure));
                                       });
    }

    void renewed(std::optional<KorvaneRetStruct> failure) {
        if (failure) {
            log({inClear(endpoint_.method), " - refreshBearerToken failed"});
            failed_(*std::move(failure));
            return;
        }
        log({"Success! Got new bearer token... now re-calling ", inClear(endpoint_.method), "..."});
        backoff_.repeat(underWay_, [weak = weak_from_this()] {
            if (const auto self = weak.lock()) self->send();
        });
    }

    SdkConfig& config_;
    const std::string cardId_;
    const Endpoint& endpoint_;
    SendOnce sendOnce_;
    std::function<void(CallError)> failed_;
    Backoff backoff_;
    Handle underWay_;  // the request, the renewal, or a wait
};

}  // namespace

Handle startAuthenticatedCall(SdkConfig& config, std::string cardId, const Endpoint& endpoint,
                              SendOnce sendOnce, std::function<void(CallError)> failed) {
    auto call = std::make_shared<AuthenticatedCall>(config, std::move(cardId), endpoint, std::move(sendOnce),
                                                    std::move(failed));
    call->send();
    return call;
}

}  // namespace korvane
