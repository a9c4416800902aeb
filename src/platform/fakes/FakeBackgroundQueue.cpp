// SPDX-License-Identifier: Apache-2.0
#include "platform/fakes/FakeBackgroundQueue.h"

#include <utility>

namespace korvane {
namespace {

bool runOldest(std::deque<std::function<void()>>& waiting) {
    if (waiting.empty()) return false;
    const auto work = std::move(waiting.front());
    waiting.pop_front();
    work();
    return true;
}

}  // namespace

FakeBackgroundQueue::FakeBackgroundQueue(std::shared_ptr<MainQueue> turns)
    : turns_(std::move(turns)), waiting_(std::make_shared<std::deque<std::function<void()>>>()) {}

// What waits still runs, as the port has it.
FakeBackgroundQueue::~FakeBackgroundQueue() {
    while (runOne()) continue;
}

void FakeBackgroundQueue::post(std::function<void()> work) {
    waiting_->push_back(std::move(work));
    if (held_) return;
    turns_->post([weak = std::weak_ptr(waiting_)] {
        if (const auto waiting = weak.lock()) runOldest(*waiting);
    });
}

bool FakeBackgroundQueue::runOne() {
    return runOldest(*waiting_);
}

}  // namespace korvane
