// SPDX-License-Identifier: Apache-2.0
#include <korvane/Initialize.h>

#include <korvane/platform/Ports.h>

#include <utility>

#include "base/Base64.h"
#include "custody/AuthenticateBiometric.h"
#include "platform/Log.h"
#include "sdk/SdkConfig.h"

// The one file of this folder that reaches up into custody/: setting up is where the layers meet.

namespace korvane {

bool initialize(std::string base64EncodedPreSharedKey, std::string apiUrl, IvCallback ivCallback,
                bool useBiometrics, const KorvaneColors& colors, const KorvaneCornerRadii& cornerRadii,
                std::optional<std::string> wearableName, std::optional<ImageData> wearableImage) {
    SdkConfig& config = SdkConfig::sharedInstance();
    // Stored before it is checked: a refused key still replaces the text (deliberate), never the bytes.
    config.preSharedKeyBase64Encoded = std::move(base64EncodedPreSharedKey);
    auto key = base64Decode(config.preSharedKeyBase64Encoded);
    if (!key) {
        log("pre-shared key base64 decode failed.");
        return false;
    }
    config.preSharedKeyByteArray = std::move(*key);
    if (apiUrl.ends_with('/')) apiUrl.pop_back();
    config.apiUrl = std::move(apiUrl);
    config.ivCallback = std::move(ivCallback);
    config.useBiometrics = useBiometrics;
    config.colors = colors;
    config.cornerRadii = cornerRadii;
    config.wearableName = std::move(wearableName);
    config.wearableImage = std::move(wearableImage);
    config.isSdkInited = true;
    log("SDK initialize success");

    if (useBiometrics) {
        AuthenticateBiometric::reloadAtInitialize();
    } else if (!AuthenticateBiometric::deletePciTokenAndTimeoutInKeychain()) {
        log("Note: failed deletePciTokenAndTimeoutInKeychain()");
    }
    return true;
}

}  // namespace korvane
