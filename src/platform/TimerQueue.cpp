// SPDX-License-Identifier: Apache-2.0
#include "platform/TimerQueue.h"

#include <cmath>
#include <cstdint>
#include <map>
#include <utility>

namespace korvane {

using std::chrono::nanoseconds;

nanoseconds dueTime(nanoseconds now, std::chrono::duration<double> delay) {
    const double ticks = std::chrono::duration<double, std::nano>(delay).count();
    if (!(ticks > 0)) return now;  // not a number included
    const nanoseconds longest = nanoseconds::max() - now;
    // Compared as floating point: converting a number that does not fit is undefined.
    if (ticks >= static_cast<double>(longest.count())) return nanoseconds::max();
    return now + nanoseconds(static_cast<nanoseconds::rep>(std::ceil(ticks)));
}

struct TimerQueue::State {
    using Key = std::pair<nanoseconds, std::uint64_t>;

    std::uint64_t started = 0;
    std::map<Key, std::function<void()>> pending;
};

class TimerQueue::Handle final : public Timer {
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

TimerQueue::TimerQueue() : state_(std::make_shared<State>()) {}

TimerQueue::~TimerQueue() {
    clear();
}

std::unique_ptr<Timer> TimerQueue::start(nanoseconds due, std::function<void()> fire) {
    const State::Key key{due, state_->started++};
    state_->pending.emplace(key, std::move(fire));
    return std::make_unique<Handle>(state_, key);
}

std::optional<nanoseconds> TimerQueue::nextDue() const {
    if (state_->pending.empty()) return std::nullopt;
    return state_->pending.begin()->first.first;
}

void TimerQueue::fireDue(nanoseconds now) {
    const auto state = state_;  // an action may destroy this queue
    while (!state->pending.empty() && state->pending.begin()->first.first <= now) {
        const auto timer = state->pending.extract(state->pending.begin());
        timer.mapped()();
    }
}

void TimerQueue::clear() {
    const auto dropped = std::exchange(state_->pending, {});
}

std::size_t TimerQueue::size() const {
    return state_->pending.size();
}

}  // namespace korvane
