// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/GLibTimers.h"

#include <utility>

#include "platform/TimerQueue.h"
#include "platform/linux/GLibSource.h"
#include "platform/linux/TimerFd.h"

namespace korvane {

struct GLibTimers::State {
    TimerFd clock;
    TimerQueue queue;
    GSource* source = nullptr;
};

GLibTimers::GLibTimers(GMainContext* context) : state_(std::make_shared<State>()) {
    state_->source = attachSource(context, "korvane timers", [state = state_] {
        // Stays readable while actions run, so that a nested loop inside one fires the rest of what is due.
        state->queue.fireDue(TimerFd::now());
        state->clock.acknowledge();
        state->clock.set(state->queue.nextDue());
    });
    g_source_add_unix_fd(state_->source, state_->clock.fd(), G_IO_IN);
}

GLibTimers::~GLibTimers() {
    releaseSource(state_->source);
    state_->queue.clear();
}

std::unique_ptr<Timer> GLibTimers::start(std::chrono::duration<double> delay, std::function<void()> fire) {
    const auto due = dueTime(now(), delay);
    auto timer = state_->queue.start(due, std::move(fire));
    if (state_->queue.nextDue() == due) state_->clock.set(due);
    return timer;
}

std::chrono::nanoseconds GLibTimers::now() const {
    return TimerFd::now();
}

}  // namespace korvane
