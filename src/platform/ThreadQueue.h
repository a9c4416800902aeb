// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/BackgroundQueue.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace korvane {

/// A background queue on a thread of its own, which starts with the first work.
class ThreadQueue final : public BackgroundQueue {
  public:
    ThreadQueue() = default;
    ~ThreadQueue() override;
    ThreadQueue(const ThreadQueue&) = delete;
    ThreadQueue& operator=(const ThreadQueue&) = delete;

    void post(std::function<void()> work) override;

  private:
    void run();

    std::mutex mutex_;  // for the next three
    std::condition_variable changed_;
    std::deque<std::function<void()>> work_;
    bool ending_ = false;
    std::thread thread_;
};

}  // namespace korvane
