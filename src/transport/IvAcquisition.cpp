// SPDX-License-Identifier: Apache-2.0
#include "transport/IvAcquisition.h"

#include <korvane/platform/Ports.h>

#include <atomic>
#include <utility>

#include "base/Base64.h"
#include "base/Secret.h"
#include "base/Text.h"
#include "platform/Log.h"
#include "sdk/SdkConfig.h"

namespace korvane {
namespace {

/// What waits for the host's answer. The asker owns it through its handle.
class Waiting {
  public:
    Waiting(SdkConfig& sdk, IvCompletion whenDone) : config_(sdk), completion_(std::move(whenDone)) {}

    void answered(const std::optional<std::string>& ivId, const std::optional<std::string>& iv) {
        doIvCallbackAndDecoding(config_, ivId, iv, std::make_shared<KorvaneRetStruct>(),
                                [this](const auto& id, const auto& bytes, KorvaneRetStruct result) {
                                    if (id && bytes) return finish(std::nullopt);
                                    finish(std::move(result));
                                });
    }

    void notAnswered() {
        KorvaneRetStruct none;
        none.error = true;
        none.errorMsg = "resStructIv is nil";
        finish(std::move(none));
    }

  private:
    void finish(std::optional<KorvaneRetStruct> failure) {
        if (const auto report = std::exchange(completion_, nullptr)) report(std::move(failure));
    }

    SdkConfig& config_;
    IvCompletion completion_;
};

/// One question to the host, shared by the copies of the reply function that the host holds.
class IvQuestion {
  public:
    explicit IvQuestion(std::weak_ptr<Waiting> waiting)
        : queue_(ports().mainQueue), waiting_(std::move(waiting)) {}
    ~IvQuestion() { abandon(); }
    IvQuestion(const IvQuestion&) = delete;
    IvQuestion& operator=(const IvQuestion&) = delete;

    void answer(std::optional<std::string> ivId, std::optional<std::string> iv) {
        if (answered_.exchange(true)) return;
        queue_->post([waiting = waiting_, ivId = std::move(ivId), iv = std::move(iv)] {
            if (const auto asker = waiting.lock()) asker->answered(ivId, iv);
        });
    }

    /// The host threw, or released the reply: no answer will come.
    void abandon() {
        if (answered_.exchange(true)) return;
        queue_->post([waiting = waiting_] {
            if (const auto asker = waiting.lock()) asker->notAnswered();
        });
    }

  private:
    std::shared_ptr<MainQueue> queue_;
    std::weak_ptr<Waiting> waiting_;
    std::atomic<bool> answered_ = false;
};

}  // namespace

bool ivAtHand(const SdkConfig& config) {
    return !config.ivIdStr.empty() && !config.ivByteArray.empty();
}

Handle obtainIv(SdkConfig& config, IvReason reason, IvCompletion completion) {
    if (reason == IvReason::refused) {
        config.ivIdStr.clear();
        wipe(config.ivByteArray);
    }
    auto waiting = std::make_shared<Waiting>(config, std::move(completion));
    const auto question = std::make_shared<IvQuestion>(waiting);
    // A copy: the host may call `initialize` from inside its callback, which replaces the stored one.
    const IvCallback callback = config.ivCallback;
    if (!callback) {
        question->answer(std::nullopt, std::nullopt);
        return waiting;
    }
    try {
        callback([question](std::optional<std::string> ivId, std::optional<std::string> iv) {
            question->answer(std::move(ivId), std::move(iv));
        });
    } catch (...) {
        question->abandon();
    }
    return waiting;
}

void doIvCallbackAndDecoding(
    SdkConfig& config, const std::optional<std::string>& ivId, const std::optional<std::string>& iv,
    const std::shared_ptr<KorvaneRetStruct>& result,
    const std::function<void(std::optional<std::string>, std::optional<std::vector<std::uint8_t>>,
                             KorvaneRetStruct)>& completion) {
    const auto fail = [&](const char* reason) {
        log({"doIvCallbackAndDecoding - ", inClear(reason)});
        result->error = true;
        result->errorMsg = reason;
        completion(std::nullopt, std::nullopt, *result);
    };
    if (!ivId) return fail("ivId is nil");
    if (!iv) return fail("iv is nil");
    auto bytes = base64Decode(*iv);
    if (!bytes) return fail("iv: Data(base64Encoded:) failed");

    wipe(config.ivByteArray);
    config.ivByteArray = *bytes;
    config.ivIdStr = *ivId;
    config.gotInitialIV = true;
    result->error = false;
    result->errorMsg.clear();
    result->jsonResponseStr.clear();
    completion(ivId, std::move(bytes), *result);
}

bool isExpiredIvWord(std::string_view resultWord) {
    return equalIgnoringCase(resultWord, "Failure: IV is expired");
}

bool isInvalidIvWord(std::string_view resultWord) {
    return equalIgnoringCase(resultWord, "Failure: Invalid offsetId");
}

}  // namespace korvane
