// SPDX-License-Identifier: Apache-2.0
#include <korvane/contracts/BiometricContextContract.h>
#include <korvane/contracts/ImageDecoderContract.h>
#include <korvane/contracts/MainQueueContract.h>
#include <korvane/contracts/SecureItemStoreContract.h>
#include <korvane/contracts/TimersContract.h>
#include <korvane/contracts/UrlSessionContract.h>

#include "platform/fakes/FakePorts.h"

namespace korvane::testing {
namespace {

struct FakeQueueDriver {
    std::shared_ptr<FakeMainQueue> queue = std::make_shared<FakeMainQueue>();

    void turn() {
        while (queue && queue->runOne()) continue;
    }
    template <class Condition>
    void runUntil(Condition condition) {
        while (!condition()) {
            if (!queue->runOne()) std::this_thread::yield();
        }
    }
};
INSTANTIATE_TYPED_TEST_SUITE_P(Fake, MainQueueContract, FakeQueueDriver);

struct FakeTimersDriver {
    std::shared_ptr<FakeTimers> timers = std::make_shared<FakeTimers>();
    void pass(std::chrono::duration<double> time) { timers->advance(time); }
};
INSTANTIATE_TYPED_TEST_SUITE_P(Fake, TimersContract, FakeTimersDriver);

struct FakeSessionDriver : FakeQueueDriver {
    std::shared_ptr<FakeUrlSession> session = std::make_shared<FakeUrlSession>(queue);

    FakeSessionDriver() {
        session->answerWith([](const UrlRequest& request) -> std::optional<UrlReply> {
            if (request.url.ends_with("/answer")) return UrlReply{202, "hello " + request.body, ""};
            if (request.url.ends_with("/failure")) return UrlReply{0, "", "connection reset"};
            return std::nullopt;
        });
    }
    std::string url(const std::string& path) const { return "https://service.test" + path; }
    void settle() { turn(); }
};
INSTANTIATE_TYPED_TEST_SUITE_P(Fake, UrlSessionContract, FakeSessionDriver);

struct FakeStoreDriver {
    std::shared_ptr<SecureItemStore> store = std::make_shared<FakeSecureItemStore>();
};
INSTANTIATE_TYPED_TEST_SUITE_P(Fake, SecureItemStoreContract, FakeStoreDriver);

struct FakeBiometricDriver : FakeQueueDriver {
    std::shared_ptr<FakeBiometricContext> context = std::make_shared<FakeBiometricContext>(queue);
    void has(Happening happening) {
        if (happening == Happening::lostReader) context->setAvailable(false);
        context->answer(happening == Happening::match || happening == Happening::retryThenMatch);
    }
    void forgetFingers() { context->setAvailable(false); }
    void settle() { turn(); }
};
INSTANTIATE_TYPED_TEST_SUITE_P(Fake, BiometricContextContract, FakeBiometricDriver);

struct SignaturesDriver : FakeQueueDriver {
    std::shared_ptr<ImageSignatures> decoder = std::make_shared<ImageSignatures>(queue);
    void settle() { turn(); }
};
INSTANTIATE_TYPED_TEST_SUITE_P(Signatures, ImageDecoderContract, SignaturesDriver);

}  // namespace
}  // namespace korvane::testing
