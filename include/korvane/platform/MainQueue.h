// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

namespace korvane {

/// Asynchronous work on the one main thread that owns every screen and all shared state.
class MainQueue {
  public:
    virtual ~MainQueue() = default;

    /// Runs `work` once on the main thread, after everything that was posted before it and never from inside
    /// this call. Any thread may call. Work that is still queued when the queue is destroyed is dropped
    /// unrun, on the thread that destroys the queue.
    virtual void post(std::function<void()> work) = 0;

    /// True on the main thread. Any thread may call.
    virtual bool isMainThread() const = 0;
};

}  // namespace korvane
