// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/Timers.h>

#include <memory>

namespace korvane {

/// Timers of Qt's event loop, on CLOCK_BOOTTIME: a timer that falls due while the device sleeps fires when it
/// wakes. Delays are kept to the nanosecond and up to the clock's end, where QTimer has whole milliseconds
/// and 24 days. Make and destroy it on the main thread, between the application object's making and its end.
class QtTimers final : public Timers {
  public:
    QtTimers();
    ~QtTimers() override;

    std::unique_ptr<Timer> start(std::chrono::duration<double> delay, std::function<void()> fire) override;
    std::chrono::nanoseconds now() const override;

  private:
    struct State;
    std::shared_ptr<State> state_;  // shared with a firing under way: an action may destroy the timers
};

}  // namespace korvane
