// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

namespace korvane {

/// The right to be called back by work that was started. Releasing it ends the work: its callback never runs,
/// it stores and repeats nothing. Empty: nothing is under way. Main thread.
using Handle = std::shared_ptr<void>;

}  // namespace korvane
