// SPDX-License-Identifier: Apache-2.0
#include "sdk/PCITimer.h"

#include <korvane/platform/Ports.h>

#include <utility>

#include "base/Text.h"
#include "platform/Log.h"

namespace korvane {

PCITimer::PCITimer(Wiring wiring) : wiring_(std::move(wiring)) {}

void PCITimer::start() {
    stop();
    const double seconds = decimalNumber(wiring_.interval()).value_or(0);
    if (seconds == 0) {
        log("Note: timer interval is 0");
        return;
    }
    thePciTimer_ = ports().timers->start(std::chrono::duration<double>(seconds), [this] { fire(); });
}

void PCITimer::stop() {
    thePciTimer_.reset();
    ++run_;
}

void PCITimer::fire() {
    thePciTimer_.reset();
    ports().mainQueue->post([this, run = run_] {
        if (run != run_) return;  // started again meanwhile: the token is another one
        log("=========");
        log("Timer hit - doing SdkConfig.sharedInstance.currentPciToken = blank");
        log("=========");
        wiring_.clearToken();
        log("=========");
        log("handlePCITokenClearTimer - setting SdkConfig timerPciExpired to true");
        log("=========");
        wiring_.markExpired();
    });
}

}  // namespace korvane
