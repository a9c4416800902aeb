// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/Timers.h>

#include <functional>
#include <memory>
#include <string>

namespace korvane {

/// The one-shot timer that clears the PCI token from memory. Main thread only.
///
/// It knows nothing of the shared state, which owns it: where the interval is read and what is cleared are
/// handed in.
class PCITimer {
  public:
    struct Wiring {
        std::function<std::string()> interval;  ///< seconds as decimal text, read at each start
        std::function<void()> clearToken;       ///< run on the main queue when the time is up …
        std::function<void()> markExpired;      ///< … and then this
    };

    explicit PCITimer(Wiring wiring);

    /// (Re)arms the timer: whatever was pending is dropped. An interval of zero, or one that is no number,
    /// arms nothing; a negative one fires at once.
    void start();

    /// Disarms the timer: what was pending is dropped, a clearing step that waits in the main queue too.
    void stop();

    /// True while a timer is pending.
    bool isArmed() const { return thePciTimer_ != nullptr; }

  private:
    void fire();

    Wiring wiring_;
    std::unique_ptr<Timer> thePciTimer_;
    unsigned run_ = 0;  // counts starts and stops
};

}  // namespace korvane
