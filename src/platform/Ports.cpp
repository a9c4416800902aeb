// SPDX-License-Identifier: Apache-2.0
#include <korvane/platform/Ports.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace korvane {
namespace {

Ports& installed() {
    static Ports instance;
    return instance;
}

}  // namespace

bool installPorts(Ports ports) {
    const bool complete = ports.mainQueue && ports.timers && ports.urlSession && ports.console &&
                          ports.secureItemStore && ports.biometricContext && ports.stringTable &&
                          ports.pasteboard && ports.imageDecoder;
    if (!complete) {
        std::fputs("korvane: installPorts: a port is missing; nothing was installed\n", stderr);
        return false;
    }
    installed() = std::move(ports);
    return true;
}

const Ports& ports() {
    if (!installed().mainQueue) {
        std::fputs("korvane: call installPorts before anything else of the component\n", stderr);
        std::abort();
    }
    return installed();
}

}  // namespace korvane
