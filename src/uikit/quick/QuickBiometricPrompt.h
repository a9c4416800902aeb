// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/BiometricPrompt.h>

#include <memory>

namespace korvane {

/// The biometric prompt of a Qt Quick app: a sheet over the window that shows a journey, else over the app's
/// active Quick window, else in a small window of its own. It counts as in sight while its window is on
/// screen, not minimised, not behind a modal window, and the app is the one that the person uses: in a
/// locked session, or under another program, a touch is meant for somebody else. Main thread.
class QuickBiometricPrompt final : public BiometricPrompt {
  public:
    /// The sheet comes up at the next turn of the event loop; an app that shows no window yet has a second to
    /// do so.
    std::unique_ptr<Handle> show(const std::string& reason, Callbacks callbacks) override;
};

}  // namespace korvane
