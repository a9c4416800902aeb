// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Appearance.h>
#include <korvane/Export.h>
#include <korvane/Initialize.h>
#include <korvane/IvCallback.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/Handle.h"
#include "sdk/PCITimer.h"

namespace korvane {

struct JourneyState;
class Preparation;

/// The one process-wide record: settings, IV and tokens, which all journeys share. A plain bag of fields.
/// Made on first use, never destroyed. What describes one journey is in `JourneyState`, which refers to this
/// one.
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
    std::string currentPciToken;  // empty: none
    std::string decPciTokenExpiration;
    std::string decBiometricsAuthenticationTimer;  // seconds as decimal text
    std::string deviceLanguageCode;
    std::string brandId;
    std::string trackingUUID;
    bool useJSONbodyForAPIRequests = true;  // nobody reads it (deliberate): every body is JSON
    bool isSdkInited = false;
    std::string cardId;  // of the journey made last, for the log alone: each has its own in `JourneyState`
    std::string useBiometric;  // "true" or "false", as sent with the PCI token submission
    std::string lastJsonResponseStr;
    bool gotInitialIV = false;
    bool timerPciExpired = false;
    PCITimer pciTimer;
    Handle session = std::make_shared<int>();  // ends with the person's session
    Handle initializeCheck;                    // the biometric check that `initialize` asked for
    std::shared_ptr<Preparation> preparation;  // under way; none: nothing is
    std::set<JourneyState*> journeys;          // those alive; each enters and removes itself

    /// Puts another PCI token in the place of the one held, which is wiped; its timer stops.
    void replacePciToken(std::string token);

    /// Ends the session of the person: every journey posts "CANCELED", unless it posted a result before, and
    /// stops; IV, tokens and timer are dropped and wiped. What `initialize` set stays.
    void endSession();

    SdkConfig(const SdkConfig&) = delete;
    SdkConfig& operator=(const SdkConfig&) = delete;

  private:
    SdkConfig();
};

}  // namespace korvane
