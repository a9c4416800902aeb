// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/Timers.h>

#include <functional>
#include <memory>
#include <vector>

#include "base/Handle.h"

namespace korvane {

class SdkConfig;

/// What `prepare` has under way, in `SdkConfig::preparation`. Releasing it ends it, and lets those go on that
/// wait. Main thread.
class Preparation {
  public:
    Preparation() = default;
    ~Preparation();
    Preparation(const Preparation&) = delete;
    Preparation& operator=(const Preparation&) = delete;

    /// Takes itself out of `config` when it is over.
    void start(SdkConfig& config);
    /// Runs `goOn` when it is over, however it ended; never from inside this call.
    [[nodiscard]] Handle wait(std::function<void()> goOn);

  private:
    using Waiting = std::function<void()>;

    Handle renewal_;
    std::unique_ptr<Timer> timeLimit_;
    std::vector<std::weak_ptr<Waiting>> waiting_;
};

}  // namespace korvane
