// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/GLibMainQueue.h"

#include <glib-unix.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <utility>

#include "platform/WorkQueue.h"
#include "platform/linux/GLibSource.h"

namespace korvane {

struct GLibMainQueue::State {
    WorkQueue work;
    GSource* source = nullptr;

    // Readable as often as there are pieces, so that a nested loop inside the work goes on with the rest. A
    // ready time instead would be set under the context's lock, on which the loop that it has just woken
    // would then wait, and once more from inside the loop: 5 us a hop.
    const int posted = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK | EFD_SEMAPHORE);

    ~State() { close(posted); }

    void runOne() {
        eventfd_t one = 0;
        eventfd_read(posted, &one);
        if (const auto piece = work.take()) piece();
    }
};

GLibMainQueue::GLibMainQueue(GMainContext* context) : state_(std::make_shared<State>()) {
    state_->source = attachSource(context, "korvane main queue", [state = state_] { state->runOne(); });
    g_source_add_unix_fd(state_->source, state_->posted, G_IO_IN);
}

GLibMainQueue::~GLibMainQueue() {
    releaseSource(state_->source);
    state_->work.clear();
}

void GLibMainQueue::post(std::function<void()> work) {
    state_->work.push(std::move(work));
    eventfd_write(state_->posted, 1);
}

}  // namespace korvane
