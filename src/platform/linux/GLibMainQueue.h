// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>
#include <korvane/platform/MainQueue.h>

#include <memory>
#include <thread>

typedef struct _GMainContext GMainContext;

namespace korvane {

/// The main queue of a GLib main loop. The thread that makes it is the main thread; work runs there whenever
/// the context is iterated, in nested loops too. Each piece takes a turn of the loop, so a long chain of
/// pieces does not keep other sources waiting.
class KORVANE_API GLibMainQueue final : public MainQueue {
  public:
    /// None stands for the default context. The context is not owned.
    explicit GLibMainQueue(GMainContext* context = nullptr);
    ~GLibMainQueue() override;

    void post(std::function<void()> work) override;
    bool isMainThread() const override { return std::this_thread::get_id() == main_; }

  private:
    struct KORVANE_HIDDEN State;
    const std::thread::id main_ = std::this_thread::get_id();
    std::shared_ptr<State> state_;  // shared with the source, which may be at work while the queue goes
};

}  // namespace korvane
