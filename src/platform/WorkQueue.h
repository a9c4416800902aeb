// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <deque>
#include <functional>
#include <mutex>
#include <utility>

namespace korvane {

/// Work in the order of posting: what every main queue holds, whatever wakes its loop. Any thread.
class WorkQueue {
  public:
    void push(std::function<void()> work) {
        const std::lock_guard lock(mutex_);
        work_.push_back(std::move(work));
    }

    /// The oldest piece of work, to be run by the caller outside the lock; none when there is none.
    std::function<void()> take() {
        const std::lock_guard lock(mutex_);
        if (work_.empty()) return nullptr;
        auto work = std::move(work_.front());
        work_.pop_front();
        return work;
    }

    /// Drops everything unrun, on this thread.
    void clear() {
        std::deque<std::function<void()>> dropped;  // outlives the lock: what goes with it may post
        const std::lock_guard lock(mutex_);
        dropped.swap(work_);
    }

    std::size_t size() const {
        const std::lock_guard lock(mutex_);
        return work_.size();
    }

  private:
    mutable std::mutex mutex_;
    std::deque<std::function<void()>> work_;
};

}  // namespace korvane
