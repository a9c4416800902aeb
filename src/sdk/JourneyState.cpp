// SPDX-License-Identifier: Apache-2.0
#include "sdk/JourneyState.h"

#include <utility>

#include "base/Secret.h"

namespace korvane {
namespace {

JourneyId nextJourneyId() {
    static JourneyId last = 0;
    return ++last;
}

}  // namespace

JourneyState::JourneyState(SdkConfig& process, std::string journeysCardId)
    : sdk(process), id(nextJourneyId()), cardId(std::move(journeysCardId)) {
    sdk.journeys.insert(this);
}

JourneyState::~JourneyState() {
    sdk.journeys.erase(this);
    wipeCardDetails();
    for (std::string* const secret :
         {&decryptedPciSmsToken, &twoFactorCode, &enteredLastFour, &enteredCvv, &pendingPin}) {
        wipe(*secret);
    }
}

void JourneyState::wipeCardDetails() {
    decodedDisclosuresStruct.reset();
    cardPicture = {};
    for (std::string* const field :
         {&decCardImage, &decPan, &decMaskedPan, &decCvv, &decMaskedCvv, &decExpiryDate, &decFirstName,
          &decMiddleName, &decLastName, &decCardNetwork}) {
        wipe(*field);
    }
}

}  // namespace korvane
