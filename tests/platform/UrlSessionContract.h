// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>
#include <korvane/platform/UrlSession.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace korvane::testing {

/// What every URL session keeps to. A driver has `std::shared_ptr<UrlSession> session`, `url(path)`,
/// `runUntil(condition)`, which waits for up to 20 s, and `settle()`, which gives a stray reply its chance.
/// Its service answers "/answer" with 202 and "hello ", then the request's body, fails "/failure", and never
/// answers "/stall".
template <class Driver>
class UrlSessionContract : public ::testing::Test {
  protected:
    std::unique_ptr<UrlTask> start(const std::string& path, std::function<void(UrlReply)> reply) {
        return driver.session->start({"POST", driver.url(path), {{"X-Test", "1"}}, "body"}, std::move(reply));
    }

    Driver driver;
    std::atomic<int> replies = 0;
};
TYPED_TEST_SUITE_P(UrlSessionContract);

TYPED_TEST_P(UrlSessionContract, AReleasedTaskNeverReplies) {
    // Each reply writes to memory that goes right after its task: a late one is a use after free, or a race.
    for (int round = 0; round < 100; ++round) {
        const int enough = this->replies + round % 9;  // release at another moment each round
        std::vector<std::unique_ptr<int>> targets;
        std::vector<std::unique_ptr<UrlTask>> tasks;
        for (int i = 0; i < 8; ++i) {
            int* target = targets.emplace_back(std::make_unique<int>(0)).get();
            tasks.push_back(this->start(i % 4 == 3 ? "/failure" : "/answer", [target, this](UrlReply) {
                ++*target;
                ++this->replies;
            }));
        }
        if (round % 9 > 0) this->driver.runUntil([&] { return this->replies >= enough; });
        for (std::size_t i = 0; i < tasks.size(); ++i) {
            tasks[i].reset();
            EXPECT_LE(*targets[i], 1);
            targets[i].reset();
        }
    }
    const int before = this->replies;
    this->driver.settle();
    EXPECT_EQ(this->replies, before);
    EXPECT_GT(before, 100);  // so both ways were taken
    EXPECT_LT(before, 800);
}

TYPED_TEST_P(UrlSessionContract, RepliesOnceAndNeverFromInsideStart) {
    for (const char* path : {"/answer", "/failure"}) {
        UrlReply got;
        bool starting = true;
        const auto task = this->start(path, [&, main = std::this_thread::get_id(), this](UrlReply reply) {
            EXPECT_FALSE(std::this_thread::get_id() == main && starting);
            got = std::move(reply);
            ++this->replies;
        });
        starting = false;
        this->driver.runUntil([&] { return this->replies > 0; });
        this->driver.settle();
        EXPECT_EQ(this->replies.exchange(0), 1);
        const bool answered = path == std::string("/answer");
        EXPECT_EQ(got.status, answered ? 202 : 0);
        EXPECT_EQ(got.body, answered ? "hello body" : "");
        EXPECT_EQ(got.failure.empty(), answered);
    }
}

TYPED_TEST_P(UrlSessionContract, ATaskMayBeReleasedInItsOwnReply) {
    struct Holder {
        std::mutex mutex;  // the reply may come before the task is stored
        std::unique_ptr<UrlTask> task;
    };
    std::weak_ptr<Holder> weak;
    for (const char* path : {"/answer", "/failure"}) {
        const auto holder = std::make_shared<Holder>();
        weak = holder;
        const std::lock_guard lock(holder->mutex);
        holder->task = this->start(path, [holder, this](UrlReply) {
            const std::lock_guard inReply(holder->mutex);
            holder->task.reset();
            ++this->replies;
        });
    }
    this->driver.runUntil([&] { return this->replies == 2 && weak.expired(); });
    EXPECT_TRUE(weak.expired()) << "a reply stays in memory after it ran";
}

TYPED_TEST_P(UrlSessionContract, TasksMayOutliveTheSessionAndNeverReply) {
    const auto held = std::make_shared<int>();
    std::vector<std::unique_ptr<UrlTask>> tasks;
    for (int i = 0; i < 20; ++i) {
        tasks.push_back(
            this->start(i % 2 ? "/stall" : "/answer", [held, this](UrlReply) { ++this->replies; }));
    }
    this->driver.session.reset();
    const int before = this->replies;
    EXPECT_EQ(held.use_count(), 1) << "a dropped reply stays in memory";
    this->driver.settle();
    EXPECT_EQ(this->replies, before);
}

TYPED_TEST_P(UrlSessionContract, AReplyThatDestroysTheSessionIsTheLast) {
    const auto held = std::make_shared<int>();
    std::mutex mutex;  // holds up the first reply, so that the others wait together
    std::vector<std::unique_ptr<UrlTask>> tasks;
    {
        const std::lock_guard lock(mutex);
        for (const char* path : {"/answer", "/stall", "/answer", "/failure", "/answer"}) {
            tasks.push_back(this->start(path, [held, &mutex, this](UrlReply) {
                const std::lock_guard inReply(mutex);
                this->driver.session.reset();
                ++this->replies;
            }));
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    this->driver.runUntil([&] { return this->replies > 0 && held.use_count() == 1; });
    EXPECT_EQ(held.use_count(), 1) << "a dropped reply stays in memory";
    this->driver.settle();
    EXPECT_EQ(this->replies, 1);
}

REGISTER_TYPED_TEST_SUITE_P(UrlSessionContract, AReleasedTaskNeverReplies, RepliesOnceAndNeverFromInsideStart,
                            ATaskMayBeReleasedInItsOwnReply, TasksMayOutliveTheSessionAndNeverReply,
                            AReplyThatDestroysTheSessionIsTheLast);

}  // namespace korvane::testing
