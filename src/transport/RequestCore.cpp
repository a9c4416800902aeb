// SPDX-License-Identifier: Apache-2.0
#include "transport/RequestCore.h"

#include <korvane/platform/Ports.h>

#include <cstdint>
#include <map>
#include <memory>
#include <new>

#include "base/Secret.h"
#include "base/Text.h"
#include "platform/Background.h"
#include "platform/Log.h"
#include "sdk/SdkConfig.h"

namespace korvane {
namespace {

using RequestCompletion = std::function<void(std::optional<RequestError>)>;

/// A longer body is read off the main thread: JSON with escapes takes a millisecond a megabyte.
constexpr std::size_t longestReadAtOnce = std::size_t{1} << 20;

/// An answer, and what was read of its body. On one thread at a time.
struct Answer {
    int status = 0;
    std::string body;
    BodyReader reader;
    std::optional<JsonError> error;
    WireText resultWord;  // of an answer that is a failure by its status

    void read() {
        if (status == 200) {
            error = reader(body);
        } else {
            const TextSlot slot{"encryptedResult", &resultWord};
            error = decodeTexts(body, {&slot, 1});
        }
    }
    ~Answer() { wipe(body); }
};

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
    Request(SdkConfig& config, bool changes, ReAuthClosure reAuthClosure, BodyReader reader,
            RequestCompletion completion)
        : config_(config),
          changes_(changes),
          reAuthClosure_(std::move(reAuthClosure)),
          reader_(std::move(reader)),
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
            if (const auto self = weak.lock()) self->complete(std::move(error));
        });
    }

  private:
    void answered(UrlReply reply) {
        // Released last: that waits for the end of the session's reply, which has only just woken this
        // thread.
        const auto task = std::move(task_);
        if (!reply.answered()) {
            log({"no response: ", reply.failure});
            const bool cancelled = reply.failureCode == urlRequestCancelled;
            return complete(RequestError{cancelled ? cancelledCode : noAnswerCode, reply.failure});
        }
        log("Status code and JSON response at base:\n");
        log(inClear(std::to_string(reply.status)));
        if (isUtf8(reply.body)) {
            log(reply.body);
        } else {
            log(std::to_string(reply.body.size()) + " bytes, not UTF-8");
        }
        const auto answer = std::make_shared<Answer>();
        answer->status = reply.status;
        answer->body = std::move(reply.body);
        answer->reader = std::exchange(reader_, nullptr);
        if (answer->body.size() <= longestReadAtOnce) {
            answer->read();
            return finish(*answer);
        }
        runInBackground([answer, weak = weak_from_this(), queue = ports().mainQueue] {
            try {
                answer->read();
            } catch (const std::bad_alloc&) {
                answer->error = JsonError{"out of memory"};
            }
            queue->post([answer, weak] {
                if (const auto self = weak.lock()) self->finish(*answer);
            });
        });
    }

    void finish(Answer& answer) {
        config_.lastJsonResponseStr = std::move(answer.body);
        if (answer.status == 200) {
            if (!answer.error) return complete(std::nullopt);
            log({". JSON decode error: ", answer.error->text});
            return complete(RequestError{noAnswerCode, std::move(answer.error->text)});
        }
        RequestError error{answer.status, "status code = " + std::to_string(answer.status)};
        if (!answer.error) error.encryptedResult = std::move(answer.resultWord);
        if (answer.status != 401) return complete(std::move(error));
        log("Got 401... calling reAuthClosure...");
        std::exchange(reAuthClosure_, nullptr)(std::move(error));
    }

    void complete(std::optional<RequestError> error) {
        std::exchange(completion_, nullptr)(std::move(error));
    }

    SdkConfig& config_;
    const bool changes_;
    const std::uint64_t number_ = nextNumber();
    ReAuthClosure reAuthClosure_;
    BodyReader reader_;
    RequestCompletion completion_;
    std::unique_ptr<UrlTask> task_;
};

}  // namespace

Handle sendRequest(SdkConfig& config, RequestParts parts, ReAuthClosure reAuthClosure, BodyReader reader,
                   RequestCompletion completion) {
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

    const auto started = std::make_shared<Request>(config, parts.changes, std::move(reAuthClosure),
                                                   std::move(reader), std::move(completion));
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
