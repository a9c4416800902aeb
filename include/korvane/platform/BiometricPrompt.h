// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace korvane {

/// What a person sees while a biometric check runs, on devices whose reader has no screen of its own. The
/// reader's adapter asks for it; the toolkit's side draws it. Main thread only.
class BiometricPrompt {
  public:
    /// A prompt that is asked for. Releasing it takes the prompt away; none of its callbacks runs afterwards.
    class Handle {
      public:
        virtual ~Handle() = default;

        /// Tells how the check goes, by a localization key such as "sdk.biometrics.retry".
        virtual void tell(std::string_view messageId) = 0;
    };

    /// What the prompt tells the reader's adapter. Both run on the main thread.
    struct Callbacks {
        /// The prompt came into view, or went out of it (covered, minimised). The reader is armed only while
        /// a person can see why. Never runs from inside `show`.
        std::function<void(bool visible)> visibilityChanged;
        /// The person declined. Never runs from inside `show`, and at most once.
        std::function<void()> cancelled;
    };

    virtual ~BiometricPrompt() = default;

    /// Shows `reason` (a text in the person's language) with a way to cancel. The caller owns the handle.
    virtual std::unique_ptr<Handle> show(const std::string& reason, Callbacks callbacks) = 0;
};

}  // namespace korvane
