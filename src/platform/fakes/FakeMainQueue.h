// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/MainQueue.h>

#include <thread>

#include "platform/WorkQueue.h"

namespace korvane {

/// A main queue that is pumped by hand. The thread that makes it is the main thread.
class FakeMainQueue final : public MainQueue {
  public:
    void post(std::function<void()> work) override;
    bool isMainThread() const override { return std::this_thread::get_id() == main_; }

    /// Runs the oldest piece of work; false when there is none. Main thread.
    bool runOne();
    /// Runs until nothing is left, what was posted meanwhile included, or `limit` pieces were run. Returns
    /// how many were run. Main thread.
    std::size_t runAll(std::size_t limit = 1'000'000);
    std::size_t pending() const;

  private:
    const std::thread::id main_ = std::this_thread::get_id();
    WorkQueue work_;
};

}  // namespace korvane
