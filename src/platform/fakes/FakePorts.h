// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/Ports.h>

#include "FakeBackgroundQueue.h"
#include "FakeBiometricContext.h"
#include "FakeConsole.h"
#include "FakeMainQueue.h"
#include "FakePasteboard.h"
#include "FakeSecureItemStore.h"
#include "FakeTimers.h"
#include "FakeUrlSession.h"

namespace korvane {

/// A whole device of fakes, installed when it is made. Biometrics start as not available.
struct FakePorts {
    /// Pump it by hand.
    std::shared_ptr<FakeMainQueue> mainQueue = std::make_shared<FakeMainQueue>();
    /// Store and reader are asked in its turns, or by hand.
    std::shared_ptr<FakeBackgroundQueue> backgroundQueue = std::make_shared<FakeBackgroundQueue>(mainQueue);
    /// Move their clock by hand.
    std::shared_ptr<FakeTimers> timers = std::make_shared<FakeTimers>();
    /// Script the answers of the card service.
    std::shared_ptr<FakeUrlSession> urlSession = std::make_shared<FakeUrlSession>(mainQueue);
    /// What the component logged, unmasked.
    std::shared_ptr<FakeConsole> console = std::make_shared<FakeConsole>();
    /// What the component kept.
    std::shared_ptr<FakeSecureItemStore> secureItemStore = std::make_shared<FakeSecureItemStore>();
    /// The finger.
    std::shared_ptr<FakeBiometricContext> biometricContext =
        std::make_shared<FakeBiometricContext>(mainQueue);
    /// What a person copied.
    std::shared_ptr<FakePasteboard> pasteboard = std::make_shared<FakePasteboard>();

    /// Installs them in the place of whatever was installed. Main thread; texts are their keys.
    FakePorts() {
        biometricContext->setAvailable(false);
        installPorts({.mainQueue = mainQueue,
                      .timers = timers,
                      .urlSession = urlSession,
                      .console = console,
                      .secureItemStore = secureItemStore,
                      .biometricContext = biometricContext,
                      .stringTable = std::make_shared<KeyStringTable>(),
                      .pasteboard = pasteboard,
                      .backgroundQueue = backgroundQueue});
    }
};

}  // namespace korvane
