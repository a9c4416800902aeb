// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace korvane {

/// An evaluation under way. Releasing it cancels the check: its reply never runs afterwards.
class BiometricEvaluation {
  public:
    virtual ~BiometricEvaluation() = default;
};

/// The device owner's biometric check (biometrics only, no passcode in their place).
class BiometricContext {
  public:
    virtual ~BiometricContext() = default;

    /// True when there is a reader and the user has enrolled. Any thread; answers within 2 s. The component
    /// asks on the background queue.
    virtual bool canEvaluate() = 0;

    /// Starts a check and shows `reason` to the user. `reply` runs at most once, on any thread, never from
    /// inside this call, with true on a match alone; a cancel, a lock-out and a lost device are false.
    virtual std::unique_ptr<BiometricEvaluation> evaluate(std::string reason,
                                                          std::function<void(bool)> reply) = 0;
};

/// The check of a device that has none.
class NoBiometricContext final : public BiometricContext {
  public:
    bool canEvaluate() override { return false; }
    std::unique_ptr<BiometricEvaluation> evaluate(std::string, std::function<void(bool)>) override {
        return nullptr;
    }
};

}  // namespace korvane
