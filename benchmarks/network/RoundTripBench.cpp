// SPDX-License-Identifier: Apache-2.0
// korvane-bench-round-trips ROUND [prepared|preparing]: the first decision of a journey in this process, and
// one operation after it, over TLS with a service that is 100 ms away; after `prepare`, or while it is at
// work. One JSON object for each, in milliseconds, with the round trips that the protocol needs. A process
// has one first time, so each round is one of its own.
#include <glib.h>
#include <korvane/Journey.h>
#include <korvane/Prepare.h>
#include <korvane/platform/Ports.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "benchmarks/support/CannedService.h"
#include "benchmarks/support/DelayingProxy.h"
#include "benchmarks/support/Fatal.h"
#include "benchmarks/support/Samples.h"
#include "flows/JourneyProbe.h"
#include "operations/Operations.h"
#include "platform/linux/CurlUrlSession.h"
#include "platform/linux/GLibMainQueue.h"
#include "platform/linux/GLibTimers.h"
#include "platform/linux/StdoutConsole.h"
#include "sdk/JourneyState.h"

namespace korvane::bench {
namespace {

constexpr std::chrono::milliseconds roundTrip{100};
/// TCP's handshake, that of TLS 1.3 (RFC 8446, 2), the status call and its 401, the token, the call again.
constexpr double neededAtFirst = 5;
constexpr double neededLater = 1;

template <class Start>
double timed(Start start) {
    bool done = false;
    const auto begin = std::chrono::steady_clock::now();
    start(done);
    while (!done) g_main_context_iteration(nullptr, TRUE);
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

void measure(int round, std::string_view mode) {
    CannedService service(true);
    const DelayingProxy proxy(service.server().port(), roundTrip);
    require(installPorts({.mainQueue = std::make_shared<GLibMainQueue>(),
                          .timers = std::make_shared<GLibTimers>(),
                          .urlSession = std::make_shared<CurlUrlSession>(
                              CurlUrlSessionOptions{.caFile = service.server().caFile()}),
                          .console = std::make_shared<StdoutConsole>(std::fopen("/dev/null", "w"))}),
            "a port is missing");
    CannedService::initialize(service.server().urlAt(proxy.port()));
    SdkConfig::sharedInstance().currentPciToken = "pci-token";

    if (mode != "cold") prepare();
    while (mode == "prepared" && SdkConfig::sharedInstance().preparation)
        g_main_context_iteration(nullptr, TRUE);
    Journey journey(JourneyKind::setPIN, "card-1");
    const double first = timed([&journey](bool& done) {
        journey.onChange([&] { done = !journey.screen().spinner; });
        journey.appear();
    });
    require(journey.screen().view == "EnterCardPINView", "the journey came to " + journey.screen().view);
    Handle call;
    const double later = timed([&](bool& done) {
        call = doPinSet(JourneyProbe::state(journey), "7391", [&done](const KorvaneRetStruct& result) {
            require(!result.error, "setting the PIN failed: " + result.errorMsg);
            done = true;
        });
    });
    const std::string name = "round_trips_" + (mode == "cold" ? "first" : std::string(mode));
    const double needed = mode == "prepared" ? neededLater : neededAtFirst;
    printSample(name + "/ours", round, {{"ms", first}});
    printSample(name + "/needed", round, {{"ms", needed * roundTrip.count()}});
    if (mode != "cold") return uninstallPorts();
    printSample("round_trips_second/ours", round, {{"ms", later}});
    printSample("round_trips_second/needed", round, {{"ms", neededLater * roundTrip.count()}});
    uninstallPorts();
}

}  // namespace
}  // namespace korvane::bench

int main(int argc, char** argv) {
    korvane::bench::measure(argc > 1 ? std::atoi(argv[1]) : 0, argc > 2 ? argv[2] : "cold");
}
