// SPDX-License-Identifier: Apache-2.0
#include "platform/fakes/FakeBackgroundQueue.h"

#include <utility>

namespace korvane {

FakeBackgroundQueue::FakeBackgroundQueue(std::shared_ptr<MainQueue> turns) : turns_(std::move(turns)) {}

// What waits still runs, as the port has it.
FakeBackgroundQueue::~FakeBackgroundQueue() {
    while (runOne()) continue;
}

void FakeBackgroundQueue::post(std::function<void()> work) {
    if (!held_) return turns_->post(std::move(work));
    waiting_.push_back(std::move(work));
}

bool FakeBackgroundQueue::runOne() {
    if (waiting_.empty()) return false;
    const auto work = std::move(waiting_.front());
    waiting_.pop_front();
    work();
    return true;
}

}  // namespace korvane
