// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace korvane {

/// A scheduled one-shot timer. Releasing it cancels: its action does not run afterwards.
class Timer {
  public:
    virtual ~Timer() = default;
};

/// One-shot timers and the clock that they go by. Main thread only.
class Timers {
  public:
    virtual ~Timers() = default;

    /// Runs `fire` once on the main thread, not earlier than `delay` from now and never from inside this
    /// call. A delay of zero or less fires on the next turn of the loop; one too long for the platform's
    /// timer is cut to the longest it has. The caller owns the handle and may release it from inside `fire`.
    virtual std::unique_ptr<Timer> start(std::chrono::duration<double> delay, std::function<void()> fire) = 0;

    /// A clock for deadlines: never goes back, and goes on while the device sleeps. Its origin is
    /// unspecified.
    virtual std::chrono::nanoseconds now() const = 0;
};

}  // namespace korvane
