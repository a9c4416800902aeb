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
        for (const auto end = std::chrono::steady_clock::now() + time;
             std::chrono::steady_clock::now() < end;)
            turn();
        turn();  // what is due at the same moment
    }
};
INSTANTIATE_TYPED_TEST_SUITE_P(GLib, TimersContract, GLibTimersDriver);

}  // namespace
}  // namespace korvane::testing
