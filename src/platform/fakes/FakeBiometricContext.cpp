// SPDX-License-Identifier: Apache-2.0
#include "platform/fakes/FakeBiometricContext.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace korvane {

struct FakeBiometricContext::Check {
    std::function<void(bool)> reply;  // none once it ran, or was cancelled
};

class FakeBiometricContext::Evaluation final : public BiometricEvaluation {
  public:
    explicit Evaluation(std::shared_ptr<Check> check) : check_(std::move(check)) {}
    ~Evaluation() override { const auto dropped = std::exchange(check_->reply, nullptr); }

  private:
    std::shared_ptr<Check> check_;
};

FakeBiometricContext::FakeBiometricContext(std::shared_ptr<MainQueue> queue) : queue_(std::move(queue)) {}

// An answer that is queued still runs; a check that nobody answered any more is dropped.
FakeBiometricContext::~FakeBiometricContext() = default;

std::unique_ptr<BiometricEvaluation> FakeBiometricContext::evaluate(std::string reason,
                                                                    std::function<void(bool)> reply) {
    assert(queue_->isMainThread());
    reasons_.push_back(std::move(reason));
    const auto check = std::make_shared<Check>(Check{std::move(reply)});
    if (available_) {
        open_.push_back(check);
    } else {
        post(check, false);
    }
    return std::make_unique<Evaluation>(check);
}

bool FakeBiometricContext::answer(bool match) {
    assert(queue_->isMainThread());
    while (!open_.empty()) {
        const auto check = open_.front();
        open_.erase(open_.begin());
        if (!check->reply) continue;  // cancelled
        post(check, match);
        return true;
    }
    return false;
}

std::size_t FakeBiometricContext::open() const {
    return static_cast<std::size_t>(
        std::count_if(open_.begin(), open_.end(), [](const auto& check) { return check->reply != nullptr; }));
}

void FakeBiometricContext::post(std::shared_ptr<Check> check, bool match) {
    queue_->post([check = std::move(check), match] {
        // Taken out first: the reply may release its own handle.
        if (const auto reply = std::exchange(check->reply, nullptr)) reply(match);
    });
}

}  // namespace korvane
