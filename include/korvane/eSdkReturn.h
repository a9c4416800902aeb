// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace korvane {

/// Result of a journey, for the host's use: nothing in the component returns it.
enum class eSdkReturn {
    eSUCCESS,   ///< "SUCCESS": it was done
    eCANCELED,  ///< "CANCELED": the person gave up, or there was nothing to do
    eFAILURE,   ///< "FAILURE": it ended on an error page
};

}  // namespace korvane
