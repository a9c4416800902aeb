// SPDX-License-Identifier: Apache-2.0
import Korvane

/// The journey that activates a new card and sets its PIN: used like SetPIN.
JourneyView {
    kind: JourneyModel.ActivateCardAndSetPIN
}
