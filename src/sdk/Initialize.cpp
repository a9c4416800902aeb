// SPDX-License-Identifier: Apache-2.0
#include <korvane/Initialize.h>

#include <korvane/CloseNotification.h>
#include <korvane/Contrast.h>

#include <cstdio>
#include <utility>

#include "base/Base64.h"
#include "base/Secret.h"
#include "custody/AuthenticateBiometric.h"
#include "platform/Log.h"
#include "sdk/ChangeNotifications.h"
#include "sdk/SdkConfig.h"

// The one file of this folder that reaches up into custody/: setting up is where the layers meet.

namespace korvane {
namespace {

/// Tells the host's developers, in debug builds only, which colours are hard to tell apart.
void adviseOnContrast([[maybe_unused]] const KorvaneColors& colors) {
#ifndef NDEBUG
    for (const ContrastFinding& finding : auditContrast(colors)) {
        char ratios[48];
        std::snprintf(ratios, sizeof ratios, " is %.2f:1, below %.1f:1", finding.ratio, finding.required);
        log({"contrast advice: ", inClear(finding.foreground), " on ", inClear(finding.background),
             inClear(ratios)});
    }
#endif
}

}  // namespace

bool initialize(std::string base64EncodedPreSharedKey, std::string apiUrl, IvCallback ivCallback,
                bool useBiometrics, const KorvaneColors& colors, const KorvaneCornerRadii& cornerRadii,
                std::optional<std::string> wearableName, std::optional<ImageData> wearableImage) {
    SdkConfig& config = SdkConfig::sharedInstance();
    // Stored before it is checked: a refused key still replaces the text (deliberate), never the bytes.
    wipe(config.preSharedKeyBase64Encoded);
    config.preSharedKeyBase64Encoded = std::move(base64EncodedPreSharedKey);
    auto key = base64Decode(config.preSharedKeyBase64Encoded);
    if (!key) {
        log("pre-shared key base64 decode failed.");
        return false;
    }
    if (apiUrl.ends_with('/')) apiUrl.pop_back();
    // Tokens and IV belong to one key and one service; the next one must never get them.
    if (config.isSdkInited && (config.preSharedKeyByteArray != *key || config.apiUrl != apiUrl)) logOut();
    wipe(config.preSharedKeyByteArray);
    config.preSharedKeyByteArray = std::move(*key);
    config.apiUrl = std::move(apiUrl);
    config.ivCallback = std::move(ivCallback);
    config.useBiometrics = useBiometrics;
    config.colors = colors;
    config.cornerRadii = cornerRadii;
    config.wearableName = std::move(wearableName);
    config.wearableImage = std::move(wearableImage);
    config.isSdkInited = true;
    log("SDK initialize success");
    adviseOnContrast(colors);
    NotificationCenter::defaultCenter().post(NotificationAppearanceChanged, {});

    if (useBiometrics) {
        AuthenticateBiometric::reloadAtInitialize(config);
    } else {
        config.initializeCheck.reset();
        AuthenticateBiometric::deletePciTokenAndTimeoutInKeychain(config, [](bool deleted) {
            if (!deleted) log("Note: failed deletePciTokenAndTimeoutInKeychain()");
        });
    }
    return true;
}

void logOut() {
    SdkConfig& config = SdkConfig::sharedInstance();
    config.endSession();
    AuthenticateBiometric::deletePciTokenAndTimeoutInKeychain(config, [](bool) {});
}

}  // namespace korvane
