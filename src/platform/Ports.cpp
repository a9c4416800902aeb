// SPDX-License-Identifier: Apache-2.0
#include <korvane/platform/Ports.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "platform/Background.h"
#include "platform/BeforeUninstallPorts.h"
#include "platform/ThreadQueue.h"

namespace korvane {
namespace {

Ports& installed() {
    // Never destroyed by itself: at that time OpenSSL, which the URL session uses, may be gone already.
    static auto* const instance = new Ports;
    return *instance;
}

}  // namespace

std::function<void()>& beforeUninstallPorts() {
    static auto* const work = new std::function<void()>;
    return *work;
}

bool installPorts(Ports ports) {
    const bool complete = ports.mainQueue && ports.timers && ports.urlSession && ports.console &&
                          ports.secureItemStore && ports.biometricContext && ports.stringTable &&
                          ports.pasteboard;
    if (!complete) {
        std::fputs("korvane: installPorts: a port is missing; nothing was installed\n", stderr);
        return false;
    }
    if (!ports.imageDecoder) ports.imageDecoder = std::make_shared<ImageSignatures>(ports.mainQueue);
    if (!ports.backgroundQueue) ports.backgroundQueue = std::make_shared<ThreadQueue>();
    uninstallPorts();
    installed() = std::move(ports);
    return true;
}

bool portsInstalled() {
    return installed().mainQueue != nullptr;
}

void uninstallPorts() {
    if (portsInstalled() && beforeUninstallPorts()) beforeUninstallPorts()();
    finishBackgroundWork();
    const Ports last = std::exchange(installed(), Ports{});
}

const Ports& ports() {
    if (!portsInstalled()) {
        std::fputs("korvane: call installPorts before anything else of the component\n", stderr);
        std::abort();
    }
    return installed();
}

}  // namespace korvane
