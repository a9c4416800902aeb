// SPDX-License-Identifier: Apache-2.0
// A port of one's own, and the contract that it has to keep.
#include <condition_variable>
#include <deque>
#include <mutex>

#include <korvane/contracts/MainQueueContract.h>

// [port]
/// A main queue for an app that has no event loop yet: `step` is its loop.
class MyQueue final : public korvane::MainQueue {
  public:
    void post(std::function<void()> work) override {
        const std::lock_guard lock(state_->mutex);
        state_->work.push_back(std::move(work));
        state_->more.notify_one();
    }
    bool isMainThread() const override { return std::this_thread::get_id() == main_; }

    struct State {
        std::mutex mutex;
        std::condition_variable more;
        std::deque<std::function<void()>> work;
    };
    /// Runs the oldest piece of work, waiting for one if asked to. Takes the state alone: the work may
    /// destroy the queue.
    static bool step(const std::shared_ptr<State>& state, bool wait) {
        std::unique_lock lock(state->mutex);
        if (wait) state->more.wait(lock, [&] { return !state->work.empty(); });
        if (state->work.empty()) return false;
        const auto next = std::move(state->work.front());
        state->work.pop_front();
        lock.unlock();
        next();
        return true;
    }
    ~MyQueue() override {
        std::deque<std::function<void()>> dropped;
        const std::lock_guard lock(state_->mutex);
        dropped.swap(state_->work);
    }
    std::shared_ptr<State> state() const { return state_; }

  private:
    const std::thread::id main_ = std::this_thread::get_id();
    std::shared_ptr<State> state_ = std::make_shared<State>();
};
// [/port]

// [contract]
struct MyDriver {
    std::shared_ptr<MyQueue> queue = std::make_shared<MyQueue>();
    std::shared_ptr<MyQueue::State> loop = queue->state();

    void turn() {
        while (MyQueue::step(loop, false)) continue;
    }
    template <class Condition>
    void runUntil(Condition condition) {
        while (!condition()) MyQueue::step(loop, true);
    }
};

namespace korvane::testing {
INSTANTIATE_TYPED_TEST_SUITE_P(Mine, MainQueueContract, MyDriver);
}  // namespace korvane::testing
// [/contract]
