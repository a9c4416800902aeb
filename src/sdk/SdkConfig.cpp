// SPDX-License-Identifier: Apache-2.0
#include "sdk/SdkConfig.h"

#include <korvane/platform/Ports.h>

#include <cassert>

#include "base/Secret.h"

namespace korvane {

SdkConfig::SdkConfig()
    : pciTimer({.interval = [this] { return decBiometricsAuthenticationTimer; },
                .clearToken = [this] { wipe(currentPciToken); },
                .markExpired = [this] { timerPciExpired = true; }}) {}

SdkConfig& SdkConfig::sharedInstance() {
    assert(ports().mainQueue->isMainThread());
    // Never destroyed: host code may still reach it while the process ends.
    static SdkConfig* const instance = new SdkConfig;
    return *instance;
}

}  // namespace korvane
