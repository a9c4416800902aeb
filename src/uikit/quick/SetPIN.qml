// SPDX-License-Identifier: Apache-2.0
import Korvane

/// The set-PIN journey for one card: write SetPIN { cardId: "…" } and take it away when it has closed.
JourneyView {
    kind: JourneyModel.SetPIN
}
