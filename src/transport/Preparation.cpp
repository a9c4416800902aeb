// SPDX-License-Identifier: Apache-2.0
#include "transport/Preparation.h"

#include <korvane/Prepare.h>
#include <korvane/platform/Ports.h>

#include <chrono>
#include <utility>

#include "sdk/SdkConfig.h"
#include "transport/BearerToken.h"

namespace korvane {
namespace {

/// A host or service that never answers must not hold up a journey that would tell so.
constexpr std::chrono::seconds longest{30};

}  // namespace

void Preparation::start(SdkConfig& config) {
    const auto over = [&config] { const auto ended = std::move(config.preparation); };
    timeLimit_ = ports().timers->start(longest, over);
    renewal_ = refreshBearerToken(config, config.cardId, [over](const auto&) { over(); });
}

Preparation::~Preparation() {
    for (const auto& each : waiting_) {
        ports().mainQueue->post([each] {
            if (const auto goOn = each.lock()) (*goOn)();
        });
    }
}

Handle Preparation::wait(std::function<void()> goOn) {
    auto waiting = std::make_shared<Waiting>(std::move(goOn));
    waiting_.push_back(waiting);
    return waiting;
}

void prepare() {
    SdkConfig& config = SdkConfig::sharedInstance();
    if (!config.isSdkInited || config.preparation || !config.currentBearerToken.empty()) return;
    const auto preparation = config.preparation = std::make_shared<Preparation>();
    preparation->start(config);  // the host may call this, or log out, when it is asked for an IV
}

}  // namespace korvane
