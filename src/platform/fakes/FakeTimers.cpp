// SPDX-License-Identifier: Apache-2.0
#include "platform/fakes/FakeTimers.h"

#include <algorithm>
#include <utility>

#include "platform/Delay.h"

namespace korvane {

struct FakeTimers::State {
    using Key = std::pair<std::chrono::nanoseconds, std::uint64_t>;  // due time, then order of starting

    // Not zero, so that nobody takes the unspecified origin for the start of the program.
    std::chrono::nanoseconds now = std::chrono::hours(1);
    std::uint64_t started = 0;
    std::map<Key, std::function<void()>> pending;
};

class FakeTimers::Handle final : public Timer {
  public:
    Handle(std::weak_ptr<State> state, State::Key key) : state_(std::move(state)), key_(key) {}

    ~Handle() override {
        const auto state = state_.lock();
        if (!state) return;
        // The action may own other timers, so it goes only once the map is whole again.
        const auto action = state->pending.extract(key_);
    }

  private:
    std::weak_ptr<State> state_;
    State::Key key_;
};

FakeTimers::FakeTimers() : state_(std::make_shared<State>()) {}

FakeTimers::~FakeTimers() {
    const auto dropped = std::exchange(state_->pending, {});
}

std::unique_ptr<Timer> FakeTimers::start(std::chrono::duration<double> delay, std::function<void()> fire) {
    const auto longest = std::chrono::nanoseconds::max() - state_->now;
    const State::Key key{state_->now + clampedDelay(delay, longest), state_->started++};
    state_->pending.emplace(key, std::move(fire));
    return std::make_unique<Handle>(state_, key);
}

std::chrono::nanoseconds FakeTimers::now() const {
    return state_->now;
}

void FakeTimers::advance(std::chrono::duration<double> by) {
    const auto state = state_;  // an action may destroy this object
    const auto end = state->now + clampedDelay(by, std::chrono::nanoseconds::max() - state->now);
    while (!state->pending.empty() && state->pending.begin()->first.first <= end) {
        const auto timer = state->pending.extract(state->pending.begin());
        // Never back: an action may itself have moved the clock on.
        state->now = std::max(state->now, timer.key().first);
        timer.mapped()();
    }
    state->now = std::max(state->now, end);
}

std::size_t FakeTimers::pending() const {
    return state_->pending.size();
}

}  // namespace korvane
