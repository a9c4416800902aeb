// SPDX-License-Identifier: Apache-2.0
#include "sdk/SdkConfig.h"

#include <korvane/platform/Ports.h>

#include <cassert>
#include <utility>

#include "base/Secret.h"
#include "platform/BeforeUninstallPorts.h"
#include "sdk/JourneyState.h"

namespace korvane {

SdkConfig::SdkConfig()
    : pciTimer({.interval = [this] { return decBiometricsAuthenticationTimer; },
                .clearToken = [this] { wipe(currentPciToken); },
                .markExpired = [this] { timerPciExpired = true; }}) {
    beforeUninstallPorts() = [this] { endSession(); };
}

void SdkConfig::replacePciToken(std::string token) {
    pciTimer.stop();
    wipe(currentPciToken);
    currentPciToken = std::move(token);
}

void SdkConfig::endSession() {
    session = std::make_shared<int>();
    initializeCheck.reset();
    // The host may destroy journeys, and make others, when it hears of an end.
    for (const auto before = journeys; JourneyState* const each : before) {
        if (journeys.contains(each)) each->end();
    }
    preparation.reset();
    pciTimer.stop();
    for (std::string* const text : {&currentBearerToken, &currentPciToken, &decPciTokenExpiration,
                                    &decBiometricsAuthenticationTimer, &lastJsonResponseStr}) {
        wipe(*text);
    }
    ivIdStr.clear();
    wipe(ivByteArray);
    gotInitialIV = timerPciExpired = false;
}

SdkConfig& SdkConfig::sharedInstance() {
    assert(ports().mainQueue->isMainThread());
    // Never destroyed: host code may still reach it while the process ends.
    static SdkConfig* const instance = new SdkConfig;
    return *instance;
}

}  // namespace korvane
