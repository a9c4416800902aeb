// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Journey.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "flows/CloseJourney.h"

namespace korvane {

struct JourneyState;
class KorvanePassCodeInput;
class NavigationStack;

/// One screen of a journey: what it shows, what a person can do on it, and what then happens. Main thread
/// only.
///
/// The navigation stack owns it, and it owns the handles of what it starts: what is under way ends with it.
class Screen : public std::enable_shared_from_this<Screen> {
  public:
    Screen(std::shared_ptr<NavigationStack> stack, std::string_view viewName);
    virtual ~Screen() = default;
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    std::string_view viewName() const { return viewName_; }
    std::uint64_t instance() const { return instance_; }

    /// What this screen shows in its place; none for a screen with content of its own.
    virtual std::shared_ptr<Screen> shown() const { return nullptr; }
    /// False for a multi view, which is never seen itself.
    virtual bool hasContent() const { return true; }
    /// Called each time the screen comes into view: first shown, or uncovered again.
    virtual void onAppear() {}
    /// Called before the screen comes into view again because the SMS step that it asked for went well.
    virtual void resumeAfterSMSVerify() {}
    /// Others may see the screen from now on: puts masks over card data.
    virtual void hideSensitive() {}
    /// The result of the journey if it is closed from outside while this screen is in view.
    virtual CloseResult closeResult() const { return CloseResult::canceled; }

    void describe(ScreenSnapshot& snapshot);
    Journey::Outcome perform(std::string_view controlId);

    Journey::Outcome insertText(std::string_view text);
    Journey::Outcome replaceText(std::string_view text);
    Journey::Outcome deleteBackward();

  protected:
    struct ScreenControl {
        Control control;
        std::function<void()> action;
    };

    /// The controls as they are now, in reading order.
    virtual std::vector<ScreenControl> controls() = 0;
    /// Adds texts, images and state fields.
    virtual void describeContent(ScreenSnapshot& snapshot) const = 0;
    /// The digit boxes, when there are any; they take input while `acceptsInput`.
    virtual KorvanePassCodeInput* passcode() { return nullptr; }
    virtual bool acceptsInput() const { return true; }
    virtual void passcodeChanged() {}

    NavigationStack& stack() const { return *stack_; }
    /// What describes the journey that this screen belongs to.
    JourneyState& state() const;
    const std::shared_ptr<JourneyState>& sharedState() const;
    const std::shared_ptr<NavigationStack>& sharedStack() const { return stack_; }
    /// Says that something to be drawn has changed.
    void changed() const;

    template <class Self>
    std::weak_ptr<Self> weak(Self* self) const {
        return std::static_pointer_cast<Self>(self->shared_from_this());
    }

    static ScreenControl button(std::string_view id, bool enabled, std::function<void()> action);
    /// The journey's own back button; enabled when there is something to go back to and `enabled`.
    ScreenControl back(bool enabled = true) const;
    void dismiss() const;

  private:
    Journey::Outcome edit(const std::function<bool(KorvanePassCodeInput&)>& change);

    std::shared_ptr<NavigationStack> stack_;
    std::string viewName_;
    std::uint64_t instance_;
};

}  // namespace korvane
