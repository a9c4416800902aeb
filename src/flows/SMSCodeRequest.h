// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "operations/Operations.h"

namespace korvane {

/// Asks the service to send an SMS code. The operation itself does not notice a refused IV; so an answer that
/// says so, or that lacks the SMS token without saying why, is tried once more under a fresh IV. Otherwise a
/// person could press the button for ever. `completion` runs once on the main queue, while the handle is
/// held. Main thread.
[[nodiscard]] Handle requestSMSCode(StatePtr state, OperationCompletion completion);

}  // namespace korvane
