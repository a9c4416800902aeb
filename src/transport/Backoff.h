// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

#include "base/Handle.h"

namespace korvane {

/// Slows a recovery down that repeats itself without end, so that a phone's battery and a service live
/// through it. The first 49 repetitions in a row run at once; the next ones wait 20 ms, 40 ms and so on, up
/// to 2 s. What repeats itself owns one. Main thread.
class Backoff {
  public:
    /// Runs `again`, at once or later; `underWay` keeps what was started: the wait, which ends when it is
    /// released, or whatever `again` puts there.
    void repeat(Handle& underWay, std::function<void()> again);
    /// The repetitions in a row have ended.
    void reset() { repeated_ = 0; }

  private:
    int repeated_ = 0;
};

}  // namespace korvane
