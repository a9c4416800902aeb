// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/BiometricPrompt.h>
#include <korvane/platform/MainQueue.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace korvane::testing {

/// A prompt that comes into view by itself, unless told otherwise, and does what the test says after that.
class ScriptedPrompt final : public BiometricPrompt {
  public:
    explicit ScriptedPrompt(std::shared_ptr<MainQueue> queue) : queue_(std::move(queue)) {}

    std::unique_ptr<Handle> show(const std::string& reason, Callbacks callbacks) override {
        reasons.push_back(reason);
        const auto shown = std::make_shared<Callbacks>(std::move(callbacks));
        latest_ = shown;
        if (comesIntoView) {
            queue_->post([weak = latest_] {
                if (const auto visible = weak.lock()) visible->visibilityChanged(true);
            });
        }
        return std::make_unique<Shown>(*this, shown);
    }

    bool shown() const { return !latest_.expired(); }
    void setVisible(bool visible) { latest_.lock()->visibilityChanged(visible); }
    void cancel() { latest_.lock()->cancelled(); }

    bool comesIntoView = true;
    std::vector<std::string> reasons;
    std::vector<std::string> told;

  private:
    class Shown final : public Handle {
      public:
        Shown(ScriptedPrompt& owner, std::shared_ptr<Callbacks> callbacks)
            : owner_(owner), callbacks_(std::move(callbacks)) {}
        void tell(std::string_view messageId) override { owner_.told.emplace_back(messageId); }

      private:
        ScriptedPrompt& owner_;
        const std::shared_ptr<Callbacks> callbacks_;
    };

    const std::shared_ptr<MainQueue> queue_;
    std::weak_ptr<Callbacks> latest_;
};

}  // namespace korvane::testing
