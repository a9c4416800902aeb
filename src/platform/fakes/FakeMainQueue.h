// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>
#include <korvane/platform/MainQueue.h>

#include <memory>
#include <thread>

namespace korvane {

class WorkQueue;

/// A main queue that is pumped by hand. The thread that makes it is the main thread.
class KORVANE_API FakeMainQueue final : public MainQueue {
  public:
    FakeMainQueue();
    ~FakeMainQueue() override;

    void post(std::function<void()> work) override;
    bool isMainThread() const override { return std::this_thread::get_id() == main_; }

    /// Runs the oldest piece of work; false when there is none. Main thread.
    bool runOne();
    /// Runs until nothing is left, what was posted meanwhile included, or `limit` pieces were run. Returns
    /// how many were run. Main thread.
    std::size_t runAll(std::size_t limit = 1'000'000);
    /// Pieces of work that wait. Any thread.
    std::size_t pending() const;

  private:
    const std::thread::id main_ = std::this_thread::get_id();
    std::unique_ptr<WorkQueue> work_;
};

}  // namespace korvane
