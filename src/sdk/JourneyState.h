// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/CloseNotification.h>

#include <functional>
#include <optional>
#include <string>

#include "sdk/CardPicture.h"
#include "sdk/DecryptedCardDisclosure.h"
#include "sdk/SdkConfig.h"
#include "sdk/eKorvaneCardType.h"

namespace korvane {

/// What describes one journey: a plain bag of fields. The root journey owns it, and the journeys nested in it
/// share it; no other journey ever sees it. Secrets are wiped with it. Main thread only.
///
/// What all journeys share (key, IV, bearer and PCI token) is in `sdk`.
struct JourneyState {
    JourneyState(SdkConfig& process, std::string journeysCardId);
    ~JourneyState();
    JourneyState(const JourneyState&) = delete;
    JourneyState& operator=(const JourneyState&) = delete;

    /// Ends the journey because its session has ended; set by the journey, which it may destroy.
    std::function<void()> end = [] {};

    /// Overwrites all that the card details retrieval stored.
    void wipeCardDetails();

    SdkConfig& sdk;
    const JourneyId id;
    const std::string cardId;
    bool resultPosted = false;  ///< a close notification has been posted for this journey

    eKorvaneCardType currentCardType = eKorvaneCardType::none;
    std::string decCardStatus;

    std::string decryptedPciSmsToken;
    std::string twoFactorCode;
    std::string viewToShowAfterSMSVerify;
    std::string viewToShowAfterSMSVerifyBackup;
    std::string viewToShowAfterFaceId;
    bool verifiedBySMS = false;  ///< the PCI token in memory was obtained in this journey

    std::string enteredLastFour;
    std::string enteredCvv;
    std::string pendingPin;
    bool setPinOnly = false;

    std::string decCardImage;
    CardPicture cardPicture;  ///< decoded from `decCardImage`, or the host's
    std::optional<DecryptedCardDisclosure> decodedDisclosuresStruct;
    std::string decPan;
    std::string decMaskedPan;
    std::string decCvv;
    std::string decMaskedCvv;
    std::string decExpiryDate;
    std::string decFirstName;
    std::string decMiddleName;
    std::string decLastName;
    std::string decCardNetwork;
};

}  // namespace korvane
