// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>
#include <korvane/platform/MainQueue.h>

#include <concepts>
#include <memory>
#include <thread>
#include <vector>

namespace korvane::testing {

/// What the suite has to be given: the queue, and a hand on its loop. Every case makes a driver of its own,
/// on the thread that the queue takes for the main one, and stays there.
/// - `queue`, a `std::shared_ptr` which alone owns the queue: cases destroy it, also out of its own work.
///   What the loop needs in order to go on after that is the driver's.
/// - `turn()` runs all work that is ready, and what that posts meanwhile; without a queue there is none.
/// - `runUntil(condition)` sleeps in the loop and looks at the condition when the loop was woken. It is also
///   called out of work that the loop runs.
template <class Driver>
concept MainQueueDriver = std::default_initializable<Driver> && requires(Driver driver, bool (*condition)()) {
    { *driver.queue } -> std::convertible_to<MainQueue&>;
    driver.queue.reset();
    driver.turn();
    driver.runUntil(condition);
};

/// What every main queue keeps to. Instantiate it within `korvane::testing`:
/// `INSTANTIATE_TYPED_TEST_SUITE_P(Mine, MainQueueContract, MyDriver);`
/// @tparam Driver  a `MainQueueDriver`
template <class Driver>
class MainQueueContract : public ::testing::Test {
    static_assert(MainQueueDriver<Driver>);

  protected:
    /// Made anew for each case.
    Driver driver;
};

/// @cond cases: their names say what a port must do
TYPED_TEST_SUITE_P(MainQueueContract);

TYPED_TEST_P(MainQueueContract, RunsWorkInOrderAndNeverFromInsidePost) {
    auto& queue = this->driver.queue;
    std::vector<int> order;
    queue->post([&] {
        queue->post([&] { order.push_back(3); });
        order.push_back(1);
    });
    queue->post([&] { order.push_back(2); });
    EXPECT_TRUE(order.empty());
    this->driver.turn();
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

TYPED_TEST_P(MainQueueContract, TakesWorkFromManyThreadsAndWakesTheLoop) {
    constexpr int perThread = 1000;
    auto& queue = this->driver.queue;
    int seen[4] = {};  // main thread only: a race here is the queue's
    int left = 4 * perThread;
    std::vector<std::thread> threads;
    for (int& next : seen) {
        threads.emplace_back([&] {
            EXPECT_FALSE(queue->isMainThread());
            for (int i = 0; i < perThread; ++i) {
                queue->post([&queue, &next, &left, i] {
                    if (!queue->isMainThread() || next++ != i) ADD_FAILURE() << "out of order at " << i;
                    --left;
                });
            }
        });
    }
    this->driver.runUntil([&] { return left == 0; });
    for (auto& thread : threads) thread.join();
}

TYPED_TEST_P(MainQueueContract, DropsQueuedWorkUnrunOnTheThreadThatDestroysIt) {
    bool ran = false;
    std::thread::id droppedOn;
    const auto note = [&droppedOn](bool*) { droppedOn = std::this_thread::get_id(); };
    std::thread([&] {
        this->driver.queue->post([held = std::shared_ptr<bool>(&ran, note)] { *held = true; });
    }).join();
    this->driver.queue.reset();
    EXPECT_EQ(droppedOn, std::this_thread::get_id());
    this->driver.turn();
    EXPECT_FALSE(ran);
}

TYPED_TEST_P(MainQueueContract, MayBeDestroyedByItsOwnWork) {
    bool ran = false;
    this->driver.queue->post([this] { this->driver.queue.reset(); });
    this->driver.queue->post([&ran] { ran = true; });
    this->driver.turn();
    EXPECT_EQ(this->driver.queue, nullptr);
    EXPECT_FALSE(ran);
}

TYPED_TEST_P(MainQueueContract, GoesOnInANestedLoop) {
    std::vector<int> order;
    this->driver.queue->post([&] {
        order.push_back(1);
        this->driver.runUntil([&] { return order.size() == 3; });  // as a modal dialog does
        order.push_back(4);
    });
    this->driver.queue->post([&] { order.push_back(2); });
    this->driver.queue->post([&] { order.push_back(3); });
    this->driver.turn();
    EXPECT_EQ(order, (std::vector{1, 2, 3, 4}));
}

REGISTER_TYPED_TEST_SUITE_P(MainQueueContract, RunsWorkInOrderAndNeverFromInsidePost,
                            TakesWorkFromManyThreadsAndWakesTheLoop,
                            DropsQueuedWorkUnrunOnTheThreadThatDestroysIt, MayBeDestroyedByItsOwnWork,
                            GoesOnInANestedLoop);
/// @endcond

}  // namespace korvane::testing
