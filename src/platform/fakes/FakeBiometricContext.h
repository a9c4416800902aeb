// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>
#include <korvane/platform/BiometricContext.h>
#include <korvane/platform/MainQueue.h>

#include <atomic>
#include <string>
#include <vector>

namespace korvane {

/// A check that is answered by hand. Main thread only, but for `canEvaluate`; replies are posted to the queue
/// it was made with. While it is not available, a check that is started all the same is answered with false.
class KORVANE_API FakeBiometricContext final : public BiometricContext {
  public:
    /// @param queue  where replies are posted; shared, never null
    explicit FakeBiometricContext(std::shared_ptr<MainQueue> queue);
    ~FakeBiometricContext() override;

    bool canEvaluate() override { return available_; }
    std::unique_ptr<BiometricEvaluation> evaluate(std::string reason,
                                                  std::function<void(bool)> reply) override;

    /// There is a reader and a finger is enrolled; true at first.
    void setAvailable(bool available) { available_ = available; }
    /// Answers the oldest check that is still open; false when there is none.
    bool answer(bool match);
    /// Checks that are neither answered nor cancelled.
    std::size_t open() const;
    /// What each check so far said as its reason, oldest first.
    const std::vector<std::string>& reasons() const { return reasons_; }

  private:
    struct KORVANE_HIDDEN Check;
    class KORVANE_HIDDEN Evaluation;
    void post(std::shared_ptr<Check> check, bool match);

    std::shared_ptr<MainQueue> queue_;
    std::atomic<bool> available_ = true;
    std::vector<std::string> reasons_;
    std::vector<std::shared_ptr<Check>> open_;
};

}  // namespace korvane
