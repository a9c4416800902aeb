// SPDX-License-Identifier: Apache-2.0
#include "platform/fakes/FakeMainQueue.h"

#include <cassert>
#include <utility>

#include "platform/WorkQueue.h"

namespace korvane {

FakeMainQueue::FakeMainQueue() : work_(std::make_unique<WorkQueue>()) {}

FakeMainQueue::~FakeMainQueue() = default;

void FakeMainQueue::post(std::function<void()> work) {
    work_->push(std::move(work));
}

bool FakeMainQueue::runOne() {
    assert(isMainThread());
    const auto work = work_->take();
    if (!work) return false;
    work();
    return true;
}

std::size_t FakeMainQueue::runAll(std::size_t limit) {
    std::size_t count = 0;
    while (count < limit && runOne()) ++count;
    return count;
}

std::size_t FakeMainQueue::pending() const {
    return work_->size();
}

}  // namespace korvane
