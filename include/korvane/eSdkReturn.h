// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace korvane {

/// Result of a journey, for the host's use: nothing in the component returns it.
enum class eSdkReturn { eSUCCESS, eCANCELED, eFAILURE };

}  // namespace korvane
