// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>
#include <korvane/platform/Timers.h>

#include <memory>

typedef struct _GMainContext GMainContext;

namespace korvane {

/// Timers of a GLib main loop, on CLOCK_BOOTTIME: a timer that falls due while the device sleeps fires when
/// it wakes. Delays are kept to the nanosecond and up to the clock's end.
class KORVANE_API GLibTimers final : public Timers {
  public:
    /// None stands for the default context. The context is not owned.
    explicit GLibTimers(GMainContext* context = nullptr);
    ~GLibTimers() override;

    std::unique_ptr<Timer> start(std::chrono::duration<double> delay, std::function<void()> fire) override;
    std::chrono::nanoseconds now() const override;

  private:
    struct KORVANE_HIDDEN State;
    std::shared_ptr<State> state_;  // shared with the source: an action may destroy the timers
};

}  // namespace korvane
