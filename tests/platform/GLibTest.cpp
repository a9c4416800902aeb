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
};
INSTANTIATE_TYPED_TEST_SUITE_P(GLib, MainQueueContract, GLibQueueDriver);

struct GLibTimersDriver : GLibQueueDriver {
    std::shared_ptr<GLibTimers> timers = std::make_shared<GLibTimers>(context.get());

    void pass(std::chrono::duration<double> time) {
        bool over = false;  // set by a timer of GLib's own
        GSource* const source = g_timeout_source_new(static_cast<unsigned>(time.count() * 1000) + 1);
        const auto set = [](gpointer target) -> gboolean { return !(*static_cast<bool*>(target) = true); };
        g_source_set_callback(source, set, &over, nullptr);
        g_source_attach(source, context.get());
        g_source_unref(source);
        runUntil([&over] { return over; });
        turn();  // what is due at the same moment
    }
};
INSTANTIATE_TYPED_TEST_SUITE_P(GLib, TimersContract, GLibTimersDriver);

}  // namespace
}  // namespace korvane::testing
