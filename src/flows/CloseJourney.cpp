// SPDX-License-Identifier: Apache-2.0
#include "flows/CloseJourney.h"

#include <korvane/CloseNotification.h>

namespace korvane {

void closeJourney(CloseResult result) {
    const char* const word = result == CloseResult::success    ? "SUCCESS"
                             : result == CloseResult::canceled ? "CANCELED"
                                                               : "FAILURE";
    NotificationCenter::defaultCenter().post(NotificationCloseUI, {{"result", word}});
}

}  // namespace korvane
