// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>
#include <korvane/platform/BackgroundQueue.h>
#include <korvane/platform/MainQueue.h>

#include <deque>
#include <memory>

namespace korvane {

/// A background queue without a thread: each piece takes a turn of the main queue, or waits until it is run
/// by hand. Main thread only.
class KORVANE_API FakeBackgroundQueue final : public BackgroundQueue {
  public:
    /// @param turns  where pieces run that are not held; shared, never null
    explicit FakeBackgroundQueue(std::shared_ptr<MainQueue> turns);
    ~FakeBackgroundQueue() override;

    void post(std::function<void()> work) override;

    /// From now on pieces wait for `runOne`: a device that has no answer.
    void hold() { held_ = true; }
    /// Runs the oldest piece that waits; false when there is none.
    bool runOne();

  private:
    std::shared_ptr<MainQueue> turns_;
    bool held_ = false;
    // Not in the main queue: a piece may own that.
    std::shared_ptr<std::deque<std::function<void()>>> waiting_;
};

}  // namespace korvane
