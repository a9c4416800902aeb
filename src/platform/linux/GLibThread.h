// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

#include "platform/WorkQueue.h"

typedef struct _GMainContext GMainContext;

namespace korvane {

/// A thread with a GLib main context of its own, which is the thread's default: answers of GIO arrive there.
/// Its work runs piece by piece, never nested, so that a piece may iterate the context while it waits;
/// between pieces the thread iterates it.
class GLibThread {
  public:
    /// `name` shows in debuggers: up to 15 characters.
    explicit GLibThread(const char* name);
    /// Waits for the piece that is running and drops the rest, on this thread.
    ~GLibThread();

    /// Any thread.
    void post(std::function<void()> work);
    /// For waking a piece of work that iterates it: `g_main_context_wakeup` may be called on any thread.
    const std::shared_ptr<GMainContext>& context() const { return context_; }

  private:
    void run(const char* name);

    const std::shared_ptr<GMainContext> context_;
    WorkQueue work_;
    std::atomic<bool> stopping_ = false;
    std::thread thread_;
};

}  // namespace korvane
