// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

namespace korvane {

/// Work under way that can be given up. It keeps itself alive: releasing a handle to it changes nothing.
class Cancellable {
  public:
    virtual ~Cancellable() = default;

    /// Gives the work up: what it holds of the device is released at once, and its completion gets the error
    /// with code -999, later on the main queue. Nothing happens when it has ended. Main thread.
    virtual void cancel() = 0;
};

using CancelHandle = std::shared_ptr<Cancellable>;

}  // namespace korvane
