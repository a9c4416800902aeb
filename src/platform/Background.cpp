// SPDX-License-Identifier: Apache-2.0
#include "platform/Background.h"

#include <chrono>
#include <future>
#include <system_error>
#include <utility>
#include <vector>

namespace korvane {
namespace {

using Work = std::future<void>;

/// Never destroyed: a program may end while some of it runs.
std::vector<Work>& running() {
    static auto* const all = new std::vector<Work>;
    return *all;
}

}  // namespace

void runInBackground(std::function<void()> work) {
    std::erase_if(running(), [](const Work& one) {
        return one.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    });
    try {
        running().push_back(std::async(std::launch::async, work));
    } catch (const std::system_error&) {
        work();
    }
}

void finishBackgroundWork() {
    running().clear();  // the destructor of such a future waits
}

}  // namespace korvane
