// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>
#include <korvane/platform/Timers.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace korvane {

/// `delay` after `now`, rounded up so that no timer fires early: `now` itself when the delay is negative or
/// not a number, the clock's end when it is too long.
KORVANE_API std::chrono::nanoseconds dueTime(std::chrono::nanoseconds now,
                                             std::chrono::duration<double> delay);

/// Pending one-shot timers in the order of their due times, then of their starting: what all timers have in
/// common, whatever clock they go by and whatever wakes their loop. One thread.
class KORVANE_API TimerQueue {
  public:
    TimerQueue();
    /// Pending actions never run afterwards; their handles may outlive the queue.
    ~TimerQueue();
    TimerQueue(const TimerQueue&) = delete;
    TimerQueue& operator=(const TimerQueue&) = delete;

    /// The handle cancels, as the port's docstring says.
    std::unique_ptr<Timer> start(std::chrono::nanoseconds due, std::function<void()> fire);

    /// When the next timer is due; none when nothing is pending.
    std::optional<std::chrono::nanoseconds> nextDue() const;

    /// Fires all that is due by `now`, which the caller reads once: an action that starts itself again with
    /// no delay is due after it, and does not hold up the loop. An action may clear or destroy the queue.
    void fireDue(std::chrono::nanoseconds now);

    /// Drops all pending actions unrun.
    void clear();

    std::size_t size() const;

  private:
    struct KORVANE_HIDDEN State;
    class KORVANE_HIDDEN Handle;
    std::shared_ptr<State> state_;  // shared with the handles, which may outlive the queue
};

}  // namespace korvane
