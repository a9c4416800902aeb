// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

namespace korvane {

/// Work that waits for the device (its secure store, its reader), away from the main thread.
class BackgroundQueue {
  public:
    virtual ~BackgroundQueue() = default;

    /// Runs `work` once, on a thread that is not the main one, when all that was posted before it has ended,
    /// and never from inside this call. Any thread may call. Work that is queued when the queue is destroyed
    /// still runs, and the destructor waits for it: a token that is to be deleted is deleted.
    virtual void post(std::function<void()> work) = 0;
};

}  // namespace korvane
