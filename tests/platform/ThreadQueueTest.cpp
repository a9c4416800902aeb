// SPDX-License-Identifier: Apache-2.0
#include "platform/ThreadQueue.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

namespace korvane {
namespace {

TEST(ThreadQueue, RunsOnePieceAfterTheOtherElsewhereAndAllOfThemBeforeItGoes) {
    std::string order;  // unguarded: two at a time would be a data race
    {
        ThreadQueue queue;
        std::thread other([&] {
            for (int i = 0; i < 100; ++i) queue.post([&] { order += 'b'; });
        });
        for (int i = 0; i < 100; ++i) queue.post([&] { order += 'a'; });
        other.join();
        queue.post([&, here = std::this_thread::get_id()] {
            EXPECT_NE(std::this_thread::get_id(), here);
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            order += 'c';
            queue.post([&] { order += 'd'; });  // also what comes while it goes
        });
    }
    EXPECT_EQ(std::count(order.begin(), order.end(), 'a'), 100);
    EXPECT_EQ(order.substr(198), order.substr(198, 2) + "cd");
    EXPECT_EQ(order.size(), 202u);
}

}  // namespace
}  // namespace korvane
