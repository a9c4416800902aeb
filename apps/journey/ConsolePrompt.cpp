// SPDX-License-Identifier: Apache-2.0
#include "ConsolePrompt.h"

#include <korvane/platform/Ports.h>

#include <utility>

#include "Events.h"

namespace korvane {

class ConsolePrompt::Shown {
  public:
    Shown(std::function<void(const std::string&)> write, Callbacks callbacks)
        : write_(std::move(write)), callbacks_(std::move(callbacks)) {}
    ~Shown() { write_(promptEvent("shown", "false")); }
    Shown(const Shown&) = delete;
    Shown& operator=(const Shown&) = delete;

    void seen() const { callbacks_.visibilityChanged(true); }
    void tell(std::string_view messageId) const { write_(promptEvent("message", messageId)); }
    bool cancel() {
        const auto cancelled = std::exchange(callbacks_.cancelled, nullptr);
        if (cancelled) cancelled();
        return cancelled != nullptr;
    }

  private:
    std::function<void(const std::string&)> write_;
    Callbacks callbacks_;
};

ConsolePrompt::ConsolePrompt(std::function<void(const std::string&)> write) : write_(std::move(write)) {}

std::unique_ptr<BiometricPrompt::Handle> ConsolePrompt::show(const std::string& reason, Callbacks callbacks) {
    class ShownHandle final : public Handle {
      public:
        explicit ShownHandle(std::shared_ptr<Shown> shown) : shown_(std::move(shown)) {}
        void tell(std::string_view messageId) override { shown_->tell(messageId); }

      private:
        std::shared_ptr<Shown> shown_;
    };

    write_(promptEvent("reason", reason));
    auto shown = std::make_shared<Shown>(write_, std::move(callbacks));
    current_ = shown;
    ports().mainQueue->post([weak = std::weak_ptr<Shown>(shown)] {
        if (const auto alive = weak.lock()) alive->seen();
    });
    return std::make_unique<ShownHandle>(std::move(shown));
}

bool ConsolePrompt::cancel() {
    const auto shown = current_.lock();
    return shown && shown->cancel();
}

}  // namespace korvane
