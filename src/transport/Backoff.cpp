// SPDX-License-Identifier: Apache-2.0
#include "transport/Backoff.h"

#include <korvane/platform/Ports.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace korvane {
namespace {

constexpr int repeatedAtOnce = 49;
constexpr std::chrono::milliseconds shortestWait{20};
constexpr std::chrono::milliseconds longestWait{2000};

}  // namespace

void Backoff::repeat(Handle& underWay, std::function<void()> again) {
    if (repeated_ < repeatedAtOnce) {
        ++repeated_;
        return again();
    }
    const int doublings = std::min(repeated_ - repeatedAtOnce, 7);  // 2.56 s, more than the longest wait
    repeated_ = repeatedAtOnce + doublings + 1;
    underWay = std::shared_ptr<Timer>(
        ports().timers->start(std::min(shortestWait * (1 << doublings), longestWait), std::move(again)));
}

}  // namespace korvane
