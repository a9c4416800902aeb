// SPDX-License-Identifier: Apache-2.0
#include "transport/IvAcquisition.h"

#include <korvane/platform/Ports.h>

#include <atomic>
#include <utility>

#include "base/Base64.h"
#include "base/Text.h"
#include "platform/Log.h"
#include "sdk/SdkConfig.h"

namespace korvane {
namespace {

/// One question to the host, shared by the copies of the reply function that it was handed.
class IvQuestion {
  public:
    explicit IvQuestion(IvContinuation continuation)
        : queue_(ports().mainQueue), continuation_(std::move(continuation)) {}

    ~IvQuestion() {
        // The host may let go on a thread of its own; what the continuation owns belongs to the main thread.
        if (continuation_) queue_->post([dropped = std::exchange(continuation_, nullptr)] {});
    }

    IvQuestion(const IvQuestion&) = delete;
    IvQuestion& operator=(const IvQuestion&) = delete;

    void answer(std::optional<std::string> ivId, std::optional<std::string> iv) {
        if (answered_.exchange(true)) return;
        queue_->post([continuation = std::exchange(continuation_, nullptr), ivId = std::move(ivId),
                      iv = std::move(iv)] {
            doIvCallbackAndDecoding(ivId, iv, std::make_shared<KorvaneRetStruct>(),
                                    [&continuation](auto id, auto bytes, KorvaneRetStruct result) {
                                        continuation(std::move(result), std::move(id), std::move(bytes));
                                    });
        });
    }

  private:
    std::shared_ptr<MainQueue> queue_;
    IvContinuation continuation_;
    std::atomic<bool> answered_ = false;
};

}  // namespace

bool ivAtHand() {
    const SdkConfig& config = SdkConfig::sharedInstance();
    return !config.ivIdStr.empty() && !config.ivByteArray.empty();
}

void requestIv(IvContinuation continuation) {
    const auto question = std::make_shared<IvQuestion>(std::move(continuation));
    // A copy: the host may call `initialize` from inside its callback, which replaces the stored one.
    const IvCallback callback = SdkConfig::sharedInstance().ivCallback;
    if (!callback) {
        question->answer(std::nullopt, std::nullopt);
        return;
    }
    callback([question](std::optional<std::string> ivId, std::optional<std::string> iv) {
        question->answer(std::move(ivId), std::move(iv));
    });
}

void doIvCallbackAndDecoding(
    const std::optional<std::string>& ivId, const std::optional<std::string>& iv,
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

    SdkConfig& config = SdkConfig::sharedInstance();
    config.ivByteArray = *bytes;
    config.ivIdStr = *ivId;
    config.gotInitialIV = true;
    result->error = false;
    result->errorMsg.clear();
    result->jsonResponseStr.clear();
    completion(ivId, std::move(bytes), *result);
}

KorvaneRetStruct ivFailure(std::optional<KorvaneRetStruct> result) {
    if (result) return *std::move(result);
    KorvaneRetStruct failure;
    failure.error = true;
    failure.errorMsg = "resStructIv is nil";
    return failure;
}

bool isExpiredIvWord(std::string_view resultWord) {
    return equalIgnoringCase(resultWord, "Failure: IV is expired");
}

bool isInvalidIvWord(std::string_view resultWord) {
    return equalIgnoringCase(resultWord, "Failure: Invalid offsetId");
}

}  // namespace korvane
