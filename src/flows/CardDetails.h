// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Initialize.h>
#include <korvane/platform/ImageDecoder.h>

#include <memory>
#include <string>

#include "sdk/eKorvaneCardType.h"

namespace korvane {

// What the card viewer reads in the shared state, made fit to be shown. Main thread.

/// The card's status, cleared as it is read: a second reader finds "".
std::string takeCardStatus();

struct CardPicture {
    std::shared_ptr<const ImageData> image;       ///< null: there is none that can be drawn
    std::shared_ptr<const DecodedImage> decoded;  ///< as `ImageDecoder` read it; null like `image`
    std::string failure;                          ///< why not, as a message id; empty when there is one
};

/// The host's picture of a wearable card when it gave one that can be drawn, else the one the service sent.
CardPicture cardPicture();

/// The host's name of a wearable card, else the name of the type in the language in use; "" when neither is
/// known.
std::string cardName(eKorvaneCardType type);

/// First, middle and last name, those that there are.
std::string cardholderName();

/// The disclosure in Spanish for a device whose language is Spanish, else in English; the first one when it
/// does not come in that language, and "" when there is none at all.
std::string cardDisclosure();

/// Overwrites all that the card details retrieval stored.
void wipeCardDetails();

}  // namespace korvane
