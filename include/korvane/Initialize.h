// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Appearance.h>
#include <korvane/Export.h>
#include <korvane/IvCallback.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

/// Journeys of a bank card: set its PIN, activate it, view it. The ports say what the component asks of the
/// device, `initialize` sets it up, a journey is shown, and a notification tells that it is over. Everything
/// is used on the main thread unless its comment says otherwise.
namespace korvane {

/// An encoded image (PNG or JPEG bytes).
using ImageData = std::vector<std::byte>;

/// Sets the component up. Call it on the main thread after `installPorts` and before showing a journey; a
/// later call overwrites what it sets; what is on screen then takes the new colours and radii at once.
/// Another key or another URL logs out first, as `logOut` does.
///
/// Debug builds log each pair of colours that `auditContrast` finds ("contrast advice: …").
///
/// @param base64EncodedPreSharedKey  the AES key in base64 (RFC 4648, padded, no line breaks): 16, 24 or 32
///     bytes. A key of another length is taken here and fails each operation later.
/// @param apiUrl  the card service's base URL; one "/" at its end is dropped. It is not checked further.
/// @param ivCallback  supplies initialisation vectors
/// @param useBiometrics  keep the PCI token in the secure store behind a biometric check, and ask for the
///     finger now when the device has one; false deletes what an earlier run kept there
/// @param colors  the palette of everything that is drawn
/// @param cornerRadii  how round corners are
/// @param wearableName  how a wearable card is named; cut to 200 characters where it is drawn. Absent or "":
///     by its type
/// @param wearableImage  how a wearable card is pictured; absent, or no picture: as the service sends it
/// @return false only when the key is not strict base64; then nothing but the stored key text has changed.
KORVANE_API bool initialize(std::string base64EncodedPreSharedKey, std::string apiUrl, IvCallback ivCallback,
                            bool useBiometrics, const KorvaneColors& colors,
                            const KorvaneCornerRadii& cornerRadii,
                            std::optional<std::string> wearableName = std::nullopt,
                            std::optional<ImageData> wearableImage = std::nullopt);

/// Ends the session of the person who used the app: call it when they log out. Journeys that are shown post
/// "CANCELED" and stop; IV, bearer token, PCI token, SMS tokens and the token's timer are dropped and wiped;
/// what the secure store holds for the key and the URL of that moment is deleted in the background. What
/// could not be deleted, in a locked keyring for instance, is not read any more and is deleted as soon as the
/// component finds the store open again. The next journey starts as after the first `initialize`.
/// `initialize` with another key or URL does the same; `uninstallPorts` drops the same from memory. Needs
/// installed ports. Main thread.
KORVANE_API void logOut();

}  // namespace korvane
