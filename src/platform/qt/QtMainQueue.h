// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/MainQueue.h>

#include <memory>
#include <thread>

namespace korvane {

/// The main queue of Qt's event loop. The thread that makes it is the main thread; make it and destroy it
/// there. Work runs in nested loops too. It needs no application object until work is to run.
class QtMainQueue final : public MainQueue {
  public:
    QtMainQueue();
    ~QtMainQueue() override;

    void post(std::function<void()> work) override;
    bool isMainThread() const override { return std::this_thread::get_id() == main_; }

  private:
    class Receiver;
    const std::thread::id main_ = std::this_thread::get_id();
    std::unique_ptr<Receiver> receiver_;
};

}  // namespace korvane
