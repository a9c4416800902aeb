// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/GLibMainQueue.h"

#include <utility>

#include "platform/WorkQueue.h"
#include "platform/linux/GLibSource.h"

namespace korvane {

struct GLibMainQueue::State {
    WorkQueue work;
    GSource* source = nullptr;

    void runOne() {
        // Not ready before it looks, ready again before it runs: a post in between is never missed, and a
        // nested loop inside the work goes on with the rest.
        g_source_set_ready_time(source, -1);
        const auto piece = work.take();
        if (work.size() > 0) g_source_set_ready_time(source, 0);
        if (piece) piece();
    }
};

GLibMainQueue::GLibMainQueue(GMainContext* context) : state_(std::make_shared<State>()) {
    state_->source = attachSource(context, "korvane main queue", [state = state_] { state->runOne(); });
}

GLibMainQueue::~GLibMainQueue() {
    releaseSource(state_->source);
    state_->work.clear();
}

void GLibMainQueue::post(std::function<void()> work) {
    state_->work.push(std::move(work));
    g_source_set_ready_time(state_->source, 0);  // wakes the loop
}

}  // namespace korvane
