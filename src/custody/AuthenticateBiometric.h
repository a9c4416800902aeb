// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "base/Handle.h"

namespace korvane {

class SdkConfig;

/// Keeps the PCI token and its timeout in the secure item store, behind the biometric check. Main thread;
/// whatever waits for store or reader does so in the background, for `backgroundLimit` at most, and reports
/// on the main queue.
class AuthenticateBiometric {
  public:
    /// Whose the items are: a text that stands for the key and the service of this moment, and gives neither
    /// away.
    static std::string ownerOf(const SdkConfig& config);
    /// Writes both items; `done` receives true only if both were written. It always runs, so that a token
    /// that was kept gets its timer, whatever became of the journey; from inside this call when there is no
    /// token.
    static void savePciTokenAndTimeoutToKeychain(const SdkConfig& config, std::function<void(bool)> done);
    /// Puts both items into `config`; `done` receives true only if both were there. Neither happens once
    /// `wanted` has gone.
    static void loadPciTokenAndTimeout(SdkConfig& config, std::weak_ptr<void> wanted,
                                       std::function<void(bool)> done);
    /// Deletes both items; `done` receives true only if both were there and are gone. What could not be
    /// deleted, in a locked store for instance, is not read any more, and tried again before each use of the
    /// store.
    static void deletePciTokenAndTimeoutInKeychain(const SdkConfig& config, std::function<void(bool)> done);
    /// Tries again to delete what could not be deleted.
    static void deleteWhatIsDue(const SdkConfig& config);

    /// What `initialize` does with biometrics on: asks for a check and, on a match, brings the token back.
    static void reloadAtInitialize(SdkConfig& config);

    enum class Outcome {
        authenticated,     ///< the token is back, and its timer runs
        noStoredToken,     ///< the finger matched, but the store gave nothing
        notAuthenticated,  ///< declined, no match, or the reader went away
        cannotEvaluate     ///< the device has no reader, or nobody has enrolled a finger
    };

    /// The gate of the journeys: joins the check that is under way, or starts one. `done` runs once on the
    /// main queue, unless the handle is released first. The check ends when nobody waits for it any more.
    [[nodiscard]] static Handle runGate(SdkConfig& config, std::function<void(Outcome)> done);
};

}  // namespace korvane
