// SPDX-License-Identifier: Apache-2.0
#include "transport/RequestCore.h"

#include <korvane/platform/Ports.h>

#include <cstdint>
#include <map>
#include <memory>

#include "base/Text.h"
#include "sdk/SdkConfig.h"

namespace korvane {
namespace {

/// The requests that run to their end although nothing waits for their answers, by number. Never destroyed,
/// like the state of the process.
std::map<std::uint64_t, std::unique_ptr<UrlTask>>& finishing() {
    static auto* const tasks = new std::map<std::uint64_t, std::unique_ptr<UrlTask>>;
    return *tasks;
}

std::uint64_t nextNumber() {
    static std::uint64_t last = 0;
    return ++last;
}

class Request final : public std::enable_shared_from_this<Request> {
  public:
    Request(SdkConfig& config, bool changes, ReAuthClosure reAuthClosure, RawCompletion completion)
        : config_(config),
          changes_(changes),
          reAuthClosure_(std::move(reAuthClosure)),
          completion_(std::move(completion)) {}

    ~Request() {
        if (task_ && changes_) finishing().emplace(number_, std::move(task_));
    }

    Request(const Request&) = delete;
    Request& operator=(const Request&) = delete;

    void start(UrlRequest request) {
        // The reply comes on the session's thread, which must never own the request: it holds it weakly.
        task_ = ports().urlSession->start(std::move(request), [weak = weak_from_this(), number = number_,
                                                               queue = ports().mainQueue](UrlReply reply) {
            queue->post([weak, number, reply = std::move(reply)]() mutable {
                if (const auto self = weak.lock()) return self->answered(std::move(reply));
                finishing().erase(number);
            });
        });
    }

    void failLater(RequestError error) {
        ports().mainQueue->post([weak = weak_from_this(), error = std::move(error)]() mutable {
            if (const auto self = weak.lock()) self->completion_(std::move(error));
        });
    }

  private:
    void answered(UrlReply reply) {
        // Released last: that waits for the end of the session's reply, which has only just woken this
        // thread.
        const auto task = std::move(task_);
        const auto reAuthClosure = std::exchange(reAuthClosure_, nullptr);
        const auto completion = std::exchange(completion_, nullptr);
        if (!reply.answered()) {
            log({"no response: ", inClear(reply.failure)});
            const bool cancelled = reply.failureCode == urlRequestCancelled;
            return completion(RequestError{cancelled ? cancelledCode : noAnswerCode, reply.failure});
        }
        const std::string status = std::to_string(reply.status);
        const std::string& body = config_.lastJsonResponseStr = std::move(reply.body);
        log("Status code and JSON response at base:\n");
        log(inClear(status));
        if (isUtf8(body)) {
            log(body);
        } else {
            log(std::to_string(body.size()) + " bytes, not UTF-8");
        }
        if (reply.status == 200) return completion(body);

        RequestError error{reply.status, "status code = " + status};
        error.body = body;
        if (reply.status != 401) return completion(std::move(error));
        log("Got 401... calling reAuthClosure...");
        reAuthClosure(std::move(error));
    }

    SdkConfig& config_;
    const bool changes_;
    const std::uint64_t number_ = nextNumber();
    ReAuthClosure reAuthClosure_;
    RawCompletion completion_;
    std::unique_ptr<UrlTask> task_;
};

}  // namespace

Handle sendRequest(SdkConfig& config, RequestParts parts, ReAuthClosure reAuthClosure,
                   RawCompletion completion) {
    log("inside doRequest<T: ...>");
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

    const auto started =
        std::make_shared<Request>(config, parts.changes, std::move(reAuthClosure), std::move(completion));
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
