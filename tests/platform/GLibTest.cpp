// SPDX-License-Identifier: Apache-2.0
#include <korvane/contracts/MainQueueContract.h>
#include <korvane/contracts/TimersContract.h>

#include "platform/linux/GLibMainQueue.h"
#include "platform/linux/GLibPtr.h"
#include "platform/linux/GLibTimers.h"

namespace korvane::testing {
namespace {

/// A context of the test's own; the apps run on the default one.
struct GLibQueueDriver {
    const GLibPtr<GMainContext> context{g_main_context_new()};
    std::shared_ptr<GLibMainQueue> queue = std::make_shared<GLibMainQueue>(context.get());

    void turn() {
        while (g_main_context_iteration(context.get(), FALSE)) continue;
    }
    template <class Condition>
    void runUntil(Condition condition) {
        while (!condition()) g_main_context_iteration(context.get(), TRUE);
    }
    /// Has a timer of GLib's own set the flag.
    void setLater(bool& flag, unsigned milliseconds) {
        GSource* const source = g_timeout_source_new(milliseconds);
        const auto set = [](gpointer target) -> gboolean { return !(*static_cast<bool*>(target) = true); };
        g_source_set_callback(source, set, &flag, nullptr);
        g_source_attach(source, context.get());
        g_source_unref(source);
    }
};
INSTANTIATE_TYPED_TEST_SUITE_P(GLib, MainQueueContract, GLibQueueDriver);

struct GLibTimersDriver : GLibQueueDriver {
    std::shared_ptr<GLibTimers> timers = std::make_shared<GLibTimers>(context.get());

    void pass(std::chrono::duration<double> time) {
        bool over = false;
        setLater(over, static_cast<unsigned>(time.count() * 1000) + 1);
        runUntil([&over] { return over; });
        turn();  // what is due at the same moment
    }
};
INSTANTIATE_TYPED_TEST_SUITE_P(GLib, TimersContract, GLibTimersDriver);

TEST(GLibLoop, LongChainsOfWorkAndTimersLeaveOtherSourcesTheirTurn) {
    constexpr int longest = 100'000;
    GLibQueueDriver driver;
    GLibTimers timers(driver.context.get());
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
    driver.setLater(idle, 1);
    driver.runUntil([&] { return idle; });
    EXPECT_LT(pieces, longest);
    EXPECT_LT(fired, longest);
}

}  // namespace
}  // namespace korvane::testing
