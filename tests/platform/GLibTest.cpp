// SPDX-License-Identifier: Apache-2.0
#include <glib.h>

#include "platform/linux/GLibMainQueue.h"
#include "platform/linux/GLibTimers.h"
#include "tests/platform/MainQueueContract.h"
#include "tests/platform/TimersContract.h"

namespace korvane::testing {
namespace {

struct GLibQueueDriver {
    std::shared_ptr<GLibMainQueue> queue = std::make_shared<GLibMainQueue>();

    void turn() {
        while (g_main_context_iteration(nullptr, FALSE)) continue;
    }
    template <class Condition>
    void runUntil(Condition condition) {
        while (!condition()) g_main_context_iteration(nullptr, TRUE);
    }
};
INSTANTIATE_TYPED_TEST_SUITE_P(GLib, MainQueueContract, GLibQueueDriver);

struct GLibTimersDriver {
    std::shared_ptr<GLibTimers> timers = std::make_shared<GLibTimers>();

    void pass(std::chrono::duration<double> time) {
        // A timer of GLib's own ends the wait; what is due at the same moment gets its turn after it.
        bool over = false;
        const auto end = [](gpointer flag) {
            *static_cast<bool*>(flag) = true;
            return G_SOURCE_REMOVE;
        };
        g_timeout_add(static_cast<guint>(time.count() * 1000) + 1, end, &over);
        while (!over) g_main_context_iteration(nullptr, TRUE);
        while (g_main_context_iteration(nullptr, FALSE)) continue;
    }
};
INSTANTIATE_TYPED_TEST_SUITE_P(GLib, TimersContract, GLibTimersDriver);

TEST(GLibLoop, LongChainsOfWorkAndTimersLeaveOtherSourcesTheirTurn) {
    constexpr int longest = 100'000;
    GLibQueueDriver driver;
    GLibTimers timers;
    int pieces = 0, fired = 0;
    bool idle = false;
    std::unique_ptr<Timer> timer;
    std::function<void()> post = [&] {
        if (!idle && ++pieces < longest) driver.queue->post(post);
    };
    std::function<void()> start = [&] {
        if (!idle && ++fired < longest) timer = timers.start({}, [&] { start(); });
    };
    post();
    start();
    const auto end = [](gpointer flag) -> gboolean { return !(*static_cast<bool*>(flag) = true); };
    g_timeout_add(1, end, &idle);
    driver.runUntil([&] { return idle; });
    EXPECT_LT(pieces, longest);
    EXPECT_LT(fired, longest);
}

TEST(GLibMainQueue, RunsOnAContextOtherThanTheDefault) {
    GMainContext* context = g_main_context_new();
    {
        GLibMainQueue queue(context);
        GLibTimers timers(context);
        int ran = 0;
        queue.post([&ran] { ++ran; });
        const auto timer = timers.start({}, [&ran] { ++ran; });
        while (g_main_context_iteration(nullptr, FALSE)) continue;
        EXPECT_EQ(ran, 0);
        while (ran < 2) g_main_context_iteration(context, TRUE);
    }
    EXPECT_FALSE(g_main_context_iteration(context, FALSE));
    g_main_context_unref(context);
}

}  // namespace
}  // namespace korvane::testing
