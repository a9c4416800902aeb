// SPDX-License-Identifier: Apache-2.0
#include "platform/fakes/FakeTimers.h"

#include <algorithm>
#include <utility>

#include "platform/TimerQueue.h"

namespace korvane {

struct FakeTimers::State {
    // Not zero, so that nobody takes the unspecified origin for the start of the program.
    std::chrono::nanoseconds now = std::chrono::hours(1);
    TimerQueue queue;
};

FakeTimers::FakeTimers() : state_(std::make_shared<State>()) {}
FakeTimers::~FakeTimers() = default;

std::unique_ptr<Timer> FakeTimers::start(std::chrono::duration<double> delay, std::function<void()> fire) {
    return state_->queue.start(dueTime(state_->now, delay), std::move(fire));
}

std::chrono::nanoseconds FakeTimers::now() const {
    return state_->now;
}

void FakeTimers::advance(std::chrono::duration<double> by) {
    State& state = *state_;
    const std::weak_ptr alive = state_;  // an action may destroy this object
    const auto end = dueTime(state.now, by);
    while (!alive.expired()) {
        const auto due = state.queue.nextDue();
        // Never back: an action may itself have moved the clock on.
        state.now = std::max(state.now, std::min(due.value_or(end), end));
        if (!due || *due > end) return;
        state.queue.fireDue(state.now);
    }
}

std::size_t FakeTimers::pending() const {
    return state_->queue.size();
}

}  // namespace korvane
