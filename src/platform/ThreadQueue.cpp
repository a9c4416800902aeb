// SPDX-License-Identifier: Apache-2.0
#include "platform/ThreadQueue.h"

#if __has_include(<pthread.h>)
#include <pthread.h>
#include <signal.h>
#endif

#include <utility>

namespace korvane {

ThreadQueue::~ThreadQueue() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
        changed_.notify_one();
    }
    if (thread_.joinable()) thread_.join();
}

void ThreadQueue::post(std::function<void()> work) {
    const std::lock_guard lock(mutex_);
    work_.push_back(std::move(work));
    changed_.notify_one();
    if (!thread_.joinable()) thread_ = std::thread([this] { run(); });
}

void ThreadQueue::run() {
#if __has_include(<pthread.h>)
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);  // the host's signal handlers do not expect this thread
#endif
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return ending_ || !work_.empty(); });
        if (work_.empty()) return;
        auto piece = std::move(work_.front());
        work_.pop_front();
        lock.unlock();
        piece();
        piece = nullptr;
        lock.lock();
    }
}

}  // namespace korvane
