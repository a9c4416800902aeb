// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/Ports.h>

#include "platform/fakes/FakeBiometricContext.h"
#include "platform/fakes/FakeConsole.h"
#include "platform/fakes/FakeMainQueue.h"
#include "platform/fakes/FakePasteboard.h"
#include "platform/fakes/FakeSecureItemStore.h"
#include "platform/fakes/FakeTimers.h"
#include "platform/fakes/FakeUrlSession.h"

namespace korvane {

/// A whole device of fakes, installed when it is made. Biometrics start as not available.
struct FakePorts {
    std::shared_ptr<FakeMainQueue> mainQueue = std::make_shared<FakeMainQueue>();
    std::shared_ptr<FakeTimers> timers = std::make_shared<FakeTimers>();
    std::shared_ptr<FakeUrlSession> urlSession = std::make_shared<FakeUrlSession>(mainQueue);
    std::shared_ptr<FakeConsole> console = std::make_shared<FakeConsole>();
    std::shared_ptr<FakeSecureItemStore> secureItemStore = std::make_shared<FakeSecureItemStore>();
    std::shared_ptr<FakeBiometricContext> biometricContext =
        std::make_shared<FakeBiometricContext>(mainQueue);
    std::shared_ptr<FakePasteboard> pasteboard = std::make_shared<FakePasteboard>();

    FakePorts() {
        biometricContext->setAvailable(false);
        installPorts({.mainQueue = mainQueue,
                      .timers = timers,
                      .urlSession = urlSession,
                      .console = console,
                      .secureItemStore = secureItemStore,
                      .biometricContext = biometricContext,
                      .stringTable = std::make_shared<KeyStringTable>(),
                      .pasteboard = pasteboard});
    }
};

}  // namespace korvane
