// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>
#include <korvane/platform/UrlSession.h>

#include <atomic>
#include <chrono>
#include <concepts>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace korvane::testing {

/// What the suite has to be given: the session, and a service for it to talk to. Every case makes a driver of
/// its own, on the main thread.
/// - `session`, a `std::shared_ptr` which alone owns the session: a reply destroys it, on its own thread.
/// - `url(path)`, the URL of that path at the service. To a POST of "body", "/answer" answers with status 202
///   and "hello body"; "/failure" gives no answer (the connection is closed, say); "/stall" never answers.
/// - `runUntil(condition)` waits until the condition holds, for 20 s at most. Where replies come from
///   the main loop, it turns the loop; else it may as well sleep and look again.
/// - `settle()` gives a reply that should not come its chance: it turns the loop, or sleeps a moment.
template <class Driver>
concept UrlSessionDriver = std::default_initializable<Driver> &&
    requires(Driver driver, bool (*condition)()) {
    { *driver.session } -> std::convertible_to<UrlSession&>;
    driver.session.reset();
    { driver.url(std::string()) } -> std::convertible_to<std::string>;
    driver.runUntil(condition);
    driver.settle();
};

/// What every URL session keeps to. Instantiate it within `korvane::testing`:
/// `INSTANTIATE_TYPED_TEST_SUITE_P(Mine, UrlSessionContract, MyDriver);`
/// What depends on the wire (certificates, redirects, time-outs, sizes) is for the port's own tests.
/// @tparam Driver  a `UrlSessionDriver`
template <class Driver>
class UrlSessionContract : public ::testing::Test {
    static_assert(UrlSessionDriver<Driver>);

  protected:
    /// Sends "body" to that path of the service.
    std::unique_ptr<UrlTask> start(const std::string& path, std::function<void(UrlReply)> reply) {
        return driver.session->start({"POST", driver.url(path), {{"X-Test", "1"}}, "body"}, std::move(reply));
    }

    /// Made anew for each case.
    Driver driver;
    /// Counts the replies that ran.
    std::atomic<int> replies = 0;
};

/// @cond cases: their names say what a port must do
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
/// @endcond

}  // namespace korvane::testing
