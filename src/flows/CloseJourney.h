// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace korvane {

struct JourneyState;

enum class CloseResult { success, canceled, failure };

/// Ends the journey: posts `NotificationCloseUI` with the result, as that journey's. The host answers by
/// removing the component's user interface, possibly before this returns; a host that does not observe sees
/// the page stay.
void closeJourney(JourneyState& state, CloseResult result);

}  // namespace korvane
