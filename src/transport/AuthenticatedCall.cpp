// SPDX-License-Identifier: Apache-2.0
#include "transport/AuthenticatedCall.h"

#include <korvane/platform/Ports.h>

#include <memory>
#include <utility>

#include "platform/Log.h"
#include "sdk/SdkConfig.h"
#include "transport/BearerToken.h"

namespace korvane {
namespace {

/// Owned by what it waits for: the closures of the request, or the renewal's completion.
class AuthenticatedCall final : public Cancellable, public std::enable_shared_from_this<AuthenticatedCall> {
  public:
    AuthenticatedCall(const Endpoint& endpoint, SendOnce sendOnce, std::function<void(CallError)> failed)
        : endpoint_(endpoint), sendOnce_(std::move(sendOnce)), failed_(std::move(failed)) {}

    void send() {
        waitingFor_ = sendOnce_("Bearer " + SdkConfig::sharedInstance().currentBearerToken,
                                [self = shared_from_this()](const RequestError&) { self->renew(); });
    }

    void cancel() override {
        const auto waitingFor = waitingFor_.lock();
        // Before the cancelled renewal reports: its failure is then nobody's any more.
        const bool wasRenewing = std::exchange(renewing_, false);
        if (waitingFor) waitingFor->cancel();
        if (wasRenewing) {
            ports().mainQueue->post([self = shared_from_this()] { self->failed_(cancelledError()); });
        }
    }

  private:
    void renew() {
        log({inClear(endpoint_.method), inClear(endpoint_.reAuthDash),
             "now inside the reAuthClosure... calling refreshBearerToken..."});
        renewing_ = true;
        waitingFor_.reset();
        waitingFor_ =
            refreshBearerToken([self = shared_from_this()](std::optional<KorvaneRetStruct> failure) {
                if (std::exchange(self->renewing_, false)) self->renewed(std::move(failure));
            });
    }

    void renewed(std::optional<KorvaneRetStruct> failure) {
        if (failure) {
            log({inClear(endpoint_.method), " - refreshBearerToken failed"});
            failed_(*std::move(failure));
            return;
        }
        log({"Success! Got new bearer token... now re-calling ", inClear(endpoint_.method), "..."});
        send();
    }

    const Endpoint& endpoint_;
    SendOnce sendOnce_;
    std::function<void(CallError)> failed_;
    std::weak_ptr<Cancellable> waitingFor_;
    bool renewing_ = false;
};

}  // namespace

CancelHandle startAuthenticatedCall(const Endpoint& endpoint, SendOnce sendOnce,
                                    std::function<void(CallError)> failed) {
    auto call = std::make_shared<AuthenticatedCall>(endpoint, std::move(sendOnce), std::move(failed));
    call->send();
    return call;
}

}  // namespace korvane
