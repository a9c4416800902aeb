// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "sdk/eKorvaneCardType.h"

namespace korvane {

struct JourneyState;

// What the card viewer reads in the journey's state, made fit to be shown. Main thread.

/// The card's status, cleared as it is read: a second reader finds "".
std::string takeCardStatus(JourneyState& state);

/// The host's name of a wearable card, else the name of the type in the language in use; "" when neither is
/// known.
std::string cardName(const JourneyState& state, eKorvaneCardType type);

/// First, middle and last name, those that there are.
std::string cardholderName(const JourneyState& state);

/// The disclosure in Spanish for a device whose language is Spanish, else in English; the first one when it
/// does not come in that language, and "" when there is none at all.
std::string cardDisclosure(const JourneyState& state);

}  // namespace korvane
