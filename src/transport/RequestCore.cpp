// SPDX-License-Identifier: Apache-2.0
#include "transport/RequestCore.h"

#include <korvane/platform/Ports.h>

#include <memory>
#include <unordered_set>

#include "base/Text.h"
#include "sdk/SdkConfig.h"

namespace korvane {
namespace {

class Request;

/// Owns the requests under way: handles are for cancelling alone. Never destroyed, like the state that they
/// fill.
std::unordered_set<std::shared_ptr<Request>>& underWay() {
    static auto* const requests = new std::unordered_set<std::shared_ptr<Request>>;
    return *requests;
}

class Request final : public Cancellable, public std::enable_shared_from_this<Request> {
  public:
    Request(ReAuthClosure reAuthClosure, RawCompletion completion)
        : reAuthClosure_(std::move(reAuthClosure)), completion_(std::move(completion)) {}

    void start(UrlRequest request) {
        underWay().insert(shared_from_this());
        // The reply comes on the session's thread, which must never own the request: it holds it weakly.
        task_ = ports().urlSession->start(
            std::move(request), [weak = weak_from_this(), queue = ports().mainQueue](UrlReply reply) {
                queue->post([weak, reply = std::move(reply)]() mutable {
                    if (const auto self = weak.lock()) self->answered(std::move(reply));
                });
            });
    }

    void failLater(RequestError error) {
        ports().mainQueue->post(
            [completion = end().completion, error = std::move(error)] { completion(error); });
    }

    void cancel() override {
        if (completion_) failLater(cancelledError());
    }

  private:
    struct Callbacks {
        ReAuthClosure reAuthClosure;
        RawCompletion completion;
    };

    /// Lets go of everything; what follows is done with the callbacks alone.
    Callbacks end() {
        task_.reset();
        underWay().erase(shared_from_this());
        return {std::exchange(reAuthClosure_, nullptr), std::exchange(completion_, nullptr)};
    }

    void answered(UrlReply reply) {
        if (!completion_) return;
        // Released last: that waits for the end of the session's reply, which has only just woken this
        // thread.
        const auto task = std::move(task_);
        const Callbacks callbacks = end();
        if (!reply.answered()) {
            log({"no response: ", inClear(reply.failure)});
            return callbacks.completion(RequestError{noAnswerCode, reply.failure});
        }
        const std::string status = std::to_string(reply.status);
        const std::string& body = SdkConfig::sharedInstance().lastJsonResponseStr = std::move(reply.body);
        log("Status code and JSON response at base:\n");
        log(inClear(status));
        if (isUtf8(body)) {
            log(body);
        } else {
            log(std::to_string(body.size()) + " bytes, not UTF-8");
        }
        if (reply.status == 200) return callbacks.completion(body);

        RequestError error{reply.status, "status code = " + status};
        error.body = body;
        if (reply.status != 401) return callbacks.completion(std::move(error));
        log("Got 401... calling reAuthClosure...");
        callbacks.reAuthClosure(std::move(error));
    }

    ReAuthClosure reAuthClosure_;
    RawCompletion completion_;
    std::unique_ptr<UrlTask> task_;
};

}  // namespace

CancelHandle sendRequest(RequestParts parts, ReAuthClosure reAuthClosure, RawCompletion completion) {
    log("inside doRequest<T: ...>");
    const SdkConfig& config = SdkConfig::sharedInstance();
    if (parts.method != "GET") {
        parts.body.set("UUID", config.trackingUUID);
        parts.body.set("brandId", config.brandId);
    }
    UrlRequest request;
    request.method = std::move(parts.method);
    request.url = std::move(parts.url);
    if (parts.authorization) request.headers.emplace_back("Authorization", *std::move(parts.authorization));
    request.headers.emplace_back("Content-Type", "application/json");
    request.headers.emplace_back("Accept", "application/json");

    const auto started = std::make_shared<Request>(std::move(reAuthClosure), std::move(completion));
    auto json = encodeTexts(parts.body);
    if (const auto* error = std::get_if<JsonError>(&json)) {
        started->failLater(RequestError{noAnswerCode, "Dictionary serialization error: " + error->text});
        return started;
    }
    request.body = std::get<std::string>(std::move(json));
    started->start(std::move(request));
    return started;
}

}  // namespace korvane
