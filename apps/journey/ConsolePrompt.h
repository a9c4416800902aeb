// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/BiometricPrompt.h>

#include <functional>
#include <memory>
#include <string>

namespace korvane {

/// The biometric prompt of a console: events say that it is there and how the check goes, a command declines
/// it. An event counts as seen, so the reader is armed as soon as the event is out. Main thread.
class ConsolePrompt final : public BiometricPrompt {
  public:
    static constexpr const char* cancelControl = "sdk.biometrics.cancel";

    /// @param write takes one event's line
    explicit ConsolePrompt(std::function<void(const std::string&)> write);

    std::unique_ptr<Handle> show(const std::string& reason, Callbacks callbacks) override;

    /// The person declines; false when no prompt is there.
    bool cancel();

  private:
    class Shown;

    std::function<void(const std::string&)> write_;
    std::weak_ptr<Shown> current_;
};

}  // namespace korvane
