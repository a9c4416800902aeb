// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Journey.h>
#include <korvane/platform/Timers.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace korvane {

struct JourneyState;
class Screen;
class ViewHost;

/// The pushed screens of one journey, over its root. Main thread only.
///
/// Screens hold it, and it holds them, until `end`.
class NavigationStack : public std::enable_shared_from_this<NavigationStack> {
  public:
    explicit NavigationStack(std::shared_ptr<JourneyState> state) : state_(std::move(state)) {}

    /// Of the journey that all the screens belong to.
    const std::shared_ptr<JourneyState>& state() const { return state_; }

    /// Shows `root`; from now on screens come into view.
    void start(std::shared_ptr<Screen> root);
    /// Lets go of everything. Later calls do nothing.
    void end();

    void push(std::shared_ptr<Screen> destination);
    /// Pops the pushed screen that is, or shows, `screen`, with all above it. Nothing when that is the root.
    void dismiss(const Screen& screen);
    bool canDismiss(const Screen& screen) const;

    /// True when `screen` is what a person sees now.
    bool isInView(const Screen& screen) const;
    /// The screen that a person sees now: the last pushed one, or what it shows in its place. None after
    /// `end`.
    std::shared_ptr<Screen> inView() const;

    /// Leaves the SMS step for the view that it was needed for: an earlier screen of that name is uncovered,
    /// else the host that shows the SMS step shows the view in its place, else it is pushed.
    void leaveSMSStep(std::string_view viewName);

    void showToast(std::string_view messageId) { showToasts({std::string{messageId}}); }
    /// One after the other, each for its time, in place of what is shown or waits.
    void showToasts(std::vector<std::string> messageIds);

    /// Hides card data on every screen, the covered ones too.
    void hideSensitive();

    /// Something to be drawn has changed: brings what came into view to its `onAppear`, then tells the
    /// observer.
    void changed();
    void onChange(std::function<void()> observer);

    void describe(ScreenSnapshot& snapshot) const;

  private:
    using Chain = std::vector<std::shared_ptr<Screen>>;

    /// From a pushed screen down to what it shows.
    static Chain chainOf(const std::shared_ptr<Screen>& screen);
    std::size_t indexOf(const Screen& screen) const;
    void popAbove(std::size_t index);
    void settle();
    void startToast();

    const std::shared_ptr<JourneyState> state_;
    std::vector<std::shared_ptr<Screen>> frames_;
    std::vector<std::uint64_t> appeared_;  // instances in view when it last settled
    bool settling_ = false;
    bool unsettled_ = false;

    std::vector<std::string> toastMsgIds_;  // the first one is shown
    std::unique_ptr<Timer> toastTimer_;

    std::function<void()> observer_;
    bool observerScheduled_ = false;
};

}  // namespace korvane
