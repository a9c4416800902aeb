// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Appearance.h>
#include <korvane/Export.h>
#include <korvane/Initialize.h>
#include <korvane/IvCallback.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "sdk/DecryptedCardDisclosure.h"
#include "sdk/PCITimer.h"
#include "sdk/eKorvaneCardType.h"

namespace korvane {

/// The one process-wide record through which the layers share settings and session data: a plain bag of
/// fields that any code reads and writes by name. Made on first use, never reset, never destroyed.
///
/// Main thread only; debug builds assert it. Nothing is locked.
class SdkConfig {
  public:
    KORVANE_API static SdkConfig& sharedInstance();

    std::string tokenApiUrl;  // nobody sets it (deliberate)
    std::string preSharedKeyBase64Encoded;
    std::string preSharedKeyBase64Decoded;       // nobody writes or reads it (deliberate)
    std::vector<std::uint8_t> preSharedKeyData;  // nobody writes or reads it (deliberate)
    std::vector<std::uint8_t> preSharedKeyByteArray;
    std::string apiUrl;
    IvCallback ivCallback = [](const IvReply& reply) { reply(std::nullopt, std::nullopt); };
    bool useBiometrics = false;
    KorvaneColors colors;
    KorvaneCornerRadii cornerRadii;
    std::optional<std::string> wearableName;
    std::optional<ImageData> wearableImage;
    std::string ivIdStr;
    std::vector<std::uint8_t> ivByteArray;
    std::string currentBearerToken;
    std::string decryptedPciSmsToken;
    std::string currentPciToken;  // empty: none
    std::string decPciTokenExpiration;
    std::string decBiometricsAuthenticationTimer;  // seconds as decimal text
    std::string deviceLanguageCode;
    std::string brandId;
    std::string trackingUUID;
    bool useJSONbodyForAPIRequests = true;  // nobody reads it (deliberate): every body is JSON
    bool isSdkInited = false;
    std::string cardId;
    std::string twoFactorCode;
    std::string useBiometric;  // "true" or "false", as sent with the PCI token submission
    std::string lastJsonResponseStr;
    bool gotInitialIV = false;
    eKorvaneCardType currentCardType = eKorvaneCardType::none;
    std::string viewToShowAfterSMSVerify;
    std::string viewToShowAfterSMSVerifyBackup;
    std::string pendingPin;
    std::string viewToShowAfterFaceId;
    std::string decCardImage;
    std::string decCardStatus;
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
    std::string enteredLastFour;
    std::string enteredCvv;
    bool setPinOnly = false;
    bool timerPciExpired = false;
    PCITimer pciTimer;

    SdkConfig(const SdkConfig&) = delete;
    SdkConfig& operator=(const SdkConfig&) = delete;

  private:
    SdkConfig();
};

}  // namespace korvane
