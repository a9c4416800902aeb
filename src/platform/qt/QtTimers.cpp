// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/QtTimers.h"

#include <QSocketNotifier>
#include <utility>

#include "platform/TimerQueue.h"
#include "platform/linux/TimerFd.h"

namespace korvane {

struct QtTimers::State {
    TimerFd clock;
    TimerQueue queue;
    QSocketNotifier notifier{clock.fd(), QSocketNotifier::Read};
};

QtTimers::QtTimers() : state_(std::make_shared<State>()) {
    const std::weak_ptr weak = state_;
    QObject::connect(&state_->notifier, &QSocketNotifier::activated, &state_->notifier, [weak] {
        const auto state = weak.lock();
        if (!state) return;
        // Stays readable while actions run, so that a nested loop inside one fires the rest of what is due.
        state->queue.fireDue(TimerFd::now());
        state->clock.acknowledge();
        state->clock.set(state->queue.nextDue());
    });
}

QtTimers::~QtTimers() {
    state_->queue.clear();
}

std::unique_ptr<Timer> QtTimers::start(std::chrono::duration<double> delay, std::function<void()> fire) {
    const auto due = dueTime(now(), delay);
    auto timer = state_->queue.start(due, std::move(fire));
    if (state_->queue.nextDue() == due) state_->clock.set(due);
    return timer;
}

std::chrono::nanoseconds QtTimers::now() const {
    return TimerFd::now();
}

}  // namespace korvane
