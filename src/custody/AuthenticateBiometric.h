// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/BiometricContext.h>

#include <functional>
#include <memory>

namespace korvane {

class SdkConfig;

/// Keeps the PCI token and its timeout in the secure item store, behind the biometric check. Main thread.
class AuthenticateBiometric {
  public:
    /// With biometrics on, has the store made ready, so that the main thread does not wait for one that
    /// hangs: `ready` runs on the main queue then, else from inside this call.
    static void prepareToSave(SdkConfig& config, std::function<void()> ready);
    /// Writes both; true only if both were written.
    static bool savePciTokenAndTimeoutToKeychain(SdkConfig& config);
    /// Each true when the item was there and now stands in `config`.
    static bool loadPciToken(SdkConfig& config);
    static bool loadBiometricsTimeout(SdkConfig& config);
    /// Deletes both; true only if both were there and are gone.
    static bool deletePciTokenAndTimeoutInKeychain();

    /// What `initialize` does with biometrics on: asks for a check and, on a match, brings the token back.
    static void reloadAtInitialize(SdkConfig& config);

    enum class Outcome { authenticated, noStoredToken, notAuthenticated };

    /// The gate of the journeys. None when the device cannot evaluate: then `done` is dropped. Otherwise
    /// `done` runs once on the main queue, unless the handle is released first: that cancels the check.
    [[nodiscard]] static std::shared_ptr<BiometricEvaluation> runGate(SdkConfig& config,
                                                                      std::function<void(Outcome)> done);
};

}  // namespace korvane
