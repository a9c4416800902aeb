// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/BiometricPrompt.h>
#include <korvane/platform/MainQueue.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace korvane {

/// A prompt that nobody sees: it comes into view by itself, unless told otherwise, and then does what it is
/// told. Main thread only. Its handles must not outlive it.
class FakeBiometricPrompt final : public BiometricPrompt {
  public:
    /// @param queue  where it comes into view; shared, never null
    explicit FakeBiometricPrompt(std::shared_ptr<MainQueue> queue) : queue_(std::move(queue)) {}

    std::unique_ptr<Handle> show(const std::string& reason, Callbacks callbacks) override {
        reasons_.push_back(reason);
        const auto shown = std::make_shared<Callbacks>(std::move(callbacks));
        latest_ = shown;
        if (comesIntoView_) {
            queue_->post([weak = latest_] {
                if (const auto visible = weak.lock()) visible->visibilityChanged(true);
            });
        }
        return std::make_unique<Shown>(told_, shown);
    }

    /// False: the next prompts stay out of sight until `setVisible`.
    void setComesIntoView(bool comes) { comesIntoView_ = comes; }
    /// True from `show` until its handle is released.
    bool shown() const { return !latest_.expired(); }
    /// The prompt that is shown comes into view or goes out of it; there must be one.
    void setVisible(bool visible) { latest_.lock()->visibilityChanged(visible); }
    /// The person declines the prompt that is shown; there must be one.
    void cancel() { latest_.lock()->cancelled(); }

    /// What each prompt so far gave as its reason, oldest first.
    const std::vector<std::string>& reasons() const { return reasons_; }
    /// The messages that the prompts were told, oldest first.
    const std::vector<std::string>& told() const { return told_; }

  private:
    class Shown final : public Handle {
      public:
        Shown(std::vector<std::string>& told, std::shared_ptr<Callbacks> callbacks)
            : told_(told), callbacks_(std::move(callbacks)) {}
        void tell(std::string_view messageId) override { told_.emplace_back(messageId); }

      private:
        std::vector<std::string>& told_;
        const std::shared_ptr<Callbacks> callbacks_;
    };

    const std::shared_ptr<MainQueue> queue_;
    std::weak_ptr<Callbacks> latest_;
    bool comesIntoView_ = true;
    std::vector<std::string> reasons_;
    std::vector<std::string> told_;
};

}  // namespace korvane
