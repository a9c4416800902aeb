// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace korvane {

class NavigationStack;
class Screen;

/// Completes the navigation that a link was asked to make: at once, or after an answer. Calling it again, or
/// when the link's screen is no longer in view, does nothing.
struct KorvaneNavigationToken {
    std::function<void()> navigationAction;

    void operator()() const { navigationAction(); }
};

/// A button that runs an action before it pushes a screen. The push happens only when the action calls its
/// token: an action that never does leaves the person where they are.
class KorvaneActionNavigationLink {
  public:
    using Destination = std::function<std::shared_ptr<Screen>()>;
    using Action = std::function<void(KorvaneNavigationToken)>;

    /// @param content the localization key of the label, which is the control's id
    KorvaneActionNavigationLink(std::string_view content, Destination destination, Action action);

    const std::string& content() const { return content_; }

    /// The tap of a person on `owner`, the screen that the link stands on.
    void tap(Screen& owner, NavigationStack& stack) const;

  private:
    std::string content_;
    Destination destination_;
    Action action_;
};

}  // namespace korvane
