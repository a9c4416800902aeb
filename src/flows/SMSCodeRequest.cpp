// SPDX-License-Identifier: Apache-2.0
#include "flows/SMSCodeRequest.h"

#include <utility>

#include "flows/FailureRoute.h"
#include "transport/AesCbc.h"
#include "transport/IvAcquisition.h"

namespace korvane {
namespace {

/// Owned by the handle of the screen that asks.
class Request final : public std::enable_shared_from_this<Request> {
  public:
    Request(StatePtr state, OperationCompletion completion)
        : state_(std::move(state)), completion_(std::move(completion)) {}

    void start() {
        underWay_ = doPciTokenRequest(state_, [weak = weak_from_this()](const KorvaneRetStruct& first) {
            if (const auto self = weak.lock()) self->answered(first);
        });
    }

  private:
    void answered(const KorvaneRetStruct& first) {
        if (!mayBeStaleIv(first)) return completion_(first);
        underWay_ =
            obtainIv(state_->sdk, IvReason::refused, [weak = weak_from_this(), first](const auto& noIv) {
                const auto self = weak.lock();
                if (!self) return;
                if (noIv) return self->completion_(first);
                self->underWay_ = doPciTokenRequest(self->state_, self->completion_);
            });
    }

    bool mayBeStaleIv(const KorvaneRetStruct& result) const {
        // A host's IV of another size enciphers nothing and deciphers no refusal of it either.
        const auto& iv = state_->sdk.ivByteArray;
        if (!iv.empty() && iv.size() != AesCbc::blockSize) return true;
        const FailureRoute::Kind kind = routeOf(result).kind;
        return result.error && (result.errorMsg.empty() || kind == FailureRoute::Kind::ivExpired ||
                                kind == FailureRoute::Kind::ivInvalid);
    }

    const StatePtr state_;
    const OperationCompletion completion_;
    Handle underWay_;  // a request, or the question for an IV
};

}  // namespace

Handle requestSMSCode(StatePtr state, OperationCompletion completion) {
    const auto request = std::make_shared<Request>(std::move(state), std::move(completion));
    request->start();
    return request;
}

}  // namespace korvane
