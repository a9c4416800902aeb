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
/// answers
/// "/stall".
template <class Driver>
class UrlSessionContract : public ::testing::Test {
  protected:
    std::unique_ptr<UrlTask> start(const std::string& path, std::function<void(UrlReply)> reply) {
        return driver.session->start({"POST", driver.url(path), {{"X-Test", "1"}}, "body"}, std::move(reply));
    }

    Driver driver;
};
TYPED_TEST_SUITE_P(UrlSessionContract);

TYPED_TEST_P(UrlSessionContract, AReleasedTaskNeverReplies) {
    // Each reply writes to memory that goes right after its task: a late one is a use after free, or a race.
    std::atomic<int> replies = 0;
    for (int round = 0; round < 100; ++round) {
        const int enough = replies + round % 9;  // release at another moment each round
        std::vector<std::unique_ptr<int>> targets;
        std::vector<std::unique_ptr<UrlTask>> tasks;
        for (int i = 0; i < 8; ++i) {
            int* target = targets.emplace_back(std::make_unique<int>(0)).get();
            tasks.push_back(this->start(i % 4 == 3 ? "/failure" : "/answer", [target, &replies](UrlReply) {
                ++*target;
                ++replies;
            }));
        }
        if (round % 9 > 0) this->driver.runUntil([&] { return replies >= enough; });
        for (std::size_t i = 0; i < tasks.size(); ++i) {
            tasks[i].reset();
            EXPECT_LE(*targets[i], 1);
            targets[i].reset();
        }
    }
    const int before = replies;
    this->driver.settle();
    EXPECT_EQ(replies, before);
    EXPECT_GT(before, 100);  // so both ways were taken
    EXPECT_LT(before, 800);
}

TYPED_TEST_P(UrlSessionContract, AnswersOnceAndNeverFromInsideStart) {
    std::atomic<int> replies = 0;
    UrlReply got;
    bool starting = true;
    const auto main = std::this_thread::get_id();
    const auto task = this->start("/answer", [&](UrlReply reply) {
        EXPECT_FALSE(std::this_thread::get_id() == main && starting);
        got = std::move(reply);
        ++replies;
    });
    starting = false;
    this->driver.runUntil([&] { return replies > 0; });
    this->driver.settle();
    EXPECT_EQ(replies, 1);
    EXPECT_TRUE(got.answered());
    EXPECT_EQ(got.status, 202);
    EXPECT_EQ(got.body, "hello body");
    EXPECT_EQ(got.failure, "");
}

TYPED_TEST_P(UrlSessionContract, AFailureIsAReplyThatIsNotAnswered) {
    std::atomic<bool> replied = false;
    UrlReply got;
    const auto task = this->start("/failure", [&](UrlReply reply) {
        got = std::move(reply);
        replied = true;
    });
    this->driver.runUntil([&] { return replied.load(); });
    EXPECT_FALSE(got.answered());
    EXPECT_EQ(got.body, "");
    EXPECT_NE(got.failure, "");
}

TYPED_TEST_P(UrlSessionContract, ATaskMayBeReleasedInItsOwnReply) {
    struct Holder {
        std::mutex mutex;  // the reply may come before the task is stored
        std::unique_ptr<UrlTask> task;
    };
    std::weak_ptr<Holder> weak;
    std::atomic<int> replies = 0;
    for (const char* path : {"/answer", "/failure"}) {
        const auto holder = std::make_shared<Holder>();
        weak = holder;
        const std::lock_guard lock(holder->mutex);
        holder->task = this->start(path, [holder, &replies](UrlReply) {
            const std::lock_guard inReply(holder->mutex);
            holder->task.reset();
            ++replies;
        });
    }
    this->driver.runUntil([&] { return replies == 2 && weak.expired(); });
    EXPECT_EQ(replies, 2);
    EXPECT_TRUE(weak.expired()) << "a reply stays in memory after it ran";
}

TYPED_TEST_P(UrlSessionContract, TasksMayOutliveTheSessionAndNeverReply) {
    auto held = std::make_shared<int>();
    std::atomic<int> replies = 0;
    std::vector<std::unique_ptr<UrlTask>> tasks;
    for (int i = 0; i < 20; ++i) {
        tasks.push_back(this->start(i % 2 ? "/stall" : "/answer", [held, &replies](UrlReply) { ++replies; }));
    }
    this->driver.session.reset();
    const int before = replies;
    EXPECT_EQ(held.use_count(), 1) << "a dropped reply stays in memory";
    this->driver.settle();
    EXPECT_EQ(replies, before);
    tasks.clear();
}

TYPED_TEST_P(UrlSessionContract, ASessionMayBeDestroyedInAReply) {
    auto held = std::make_shared<int>();
    std::atomic<int> replies = 0;
    std::atomic<bool> gone = false;
    std::mutex mutex;
    std::unique_ptr<UrlTask> stalled, answered;
    {
        const std::lock_guard lock(mutex);
        stalled = this->start("/stall", [held, &replies](UrlReply) { ++replies; });
        answered = this->start("/answer", [&](UrlReply) {
            const std::lock_guard inReply(mutex);
            this->driver.session.reset();
            gone = true;
        });
    }
    this->driver.runUntil([&] { return gone && held.use_count() == 1; });
    EXPECT_TRUE(gone);
    EXPECT_EQ(held.use_count(), 1) << "a dropped reply stays in memory";
    this->driver.settle();
    EXPECT_EQ(replies, 0);
}

REGISTER_TYPED_TEST_SUITE_P(UrlSessionContract, AReleasedTaskNeverReplies, AnswersOnceAndNeverFromInsideStart,
                            AFailureIsAReplyThatIsNotAnswered, ATaskMayBeReleasedInItsOwnReply,
                            TasksMayOutliveTheSessionAndNeverReply, ASessionMayBeDestroyedInAReply);

}  // namespace korvane::testing
