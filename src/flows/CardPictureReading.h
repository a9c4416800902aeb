// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

#include "base/Handle.h"
#include "operations/Operations.h"

namespace korvane {

/// Decodes the picture of the journey's card into `JourneyState::cardPicture`: the host's picture of a
/// wearable card if that can be decoded, else the one from the service. `done` runs once on the main queue,
/// never from inside this call. Main thread.
Handle readCardPicture(StatePtr state, std::function<void()> done);

}  // namespace korvane
