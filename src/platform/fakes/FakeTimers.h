// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>
#include <korvane/platform/Timers.h>

#include <memory>

namespace korvane {

/// Timers on a clock that is moved by hand.
class KORVANE_API FakeTimers final : public Timers {
  public:
    FakeTimers();
    ~FakeTimers() override;

    std::unique_ptr<Timer> start(std::chrono::duration<double> delay, std::function<void()> fire) override;
    std::chrono::nanoseconds now() const override;

    /// Moves the clock on and fires what is due, in the order of the due times; the clock shows each timer's
    /// due time while it fires.
    void advance(std::chrono::duration<double> by);
    /// Timers that have neither fired nor been released.
    std::size_t pending() const;

  private:
    struct KORVANE_HIDDEN State;
    std::shared_ptr<State> state_;  // shared so that `advance` sees when an action destroys the timers
};

}  // namespace korvane
