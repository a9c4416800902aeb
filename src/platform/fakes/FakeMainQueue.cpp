// SPDX-License-Identifier: Apache-2.0
#include "platform/fakes/FakeMainQueue.h"

#include <cassert>
#include <utility>

namespace korvane {

void FakeMainQueue::post(std::function<void()> work) {
    const std::lock_guard lock(mutex_);
    work_.push_back(std::move(work));
}

bool FakeMainQueue::runOne() {
    assert(isMainThread());
    std::function<void()> work;
    {
        const std::lock_guard lock(mutex_);
        if (work_.empty()) return false;
        work = std::move(work_.front());
        work_.pop_front();
    }
    work();
    return true;
}

std::size_t FakeMainQueue::runAll(std::size_t limit) {
    std::size_t count = 0;
    while (count < limit && runOne()) ++count;
    return count;
}

std::size_t FakeMainQueue::pending() const {
    const std::lock_guard lock(mutex_);
    return work_.size();
}

}  // namespace korvane
