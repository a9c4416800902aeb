// SPDX-License-Identifier: Apache-2.0
import Korvane

/// The card viewer, with details, freeze switch and activation: used like SetPIN.
JourneyView {
    kind: JourneyModel.GetCardImage
}
