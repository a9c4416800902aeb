// SPDX-License-Identifier: Apache-2.0
#include "flows/CloseJourney.h"

#include <korvane/CloseNotification.h>

#include "sdk/JourneyState.h"

namespace korvane {

void closeJourney(JourneyState& state, CloseResult result) {
    const char* const word = result == CloseResult::success    ? "SUCCESS"
                             : result == CloseResult::canceled ? "CANCELED"
                                                               : "FAILURE";
    state.resultPosted = true;
    NotificationCenter::defaultCenter().post(NotificationCloseUI, {{"result", word}}, state.id);
}

}  // namespace korvane
