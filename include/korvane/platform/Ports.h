// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/BiometricContext.h>
#include <korvane/platform/Console.h>
#include <korvane/platform/ImageDecoder.h>
#include <korvane/platform/MainQueue.h>
#include <korvane/platform/Pasteboard.h>
#include <korvane/platform/SecureItemStore.h>
#include <korvane/platform/StringTable.h>
#include <korvane/platform/Timers.h>
#include <korvane/platform/UrlSession.h>

#include <memory>
#include <string>

namespace korvane {

/// Everything that the component asks of the device, as one value. It is put together at one place, the
/// composition root of an app. The first four have no stand-in; the others start as a device without them.
struct Ports {
    std::shared_ptr<MainQueue> mainQueue;
    std::shared_ptr<Timers> timers;
    std::shared_ptr<UrlSession> urlSession;
    std::shared_ptr<Console> console;
    std::shared_ptr<SecureItemStore> secureItemStore = std::make_shared<NoSecureItemStore>();
    std::shared_ptr<BiometricContext> biometricContext = std::make_shared<NoBiometricContext>();
    std::shared_ptr<StringTable> stringTable = std::make_shared<KeyStringTable>();
    std::shared_ptr<Pasteboard> pasteboard = std::make_shared<NoPasteboard>();
    std::shared_ptr<ImageDecoder> imageDecoder = std::make_shared<ImageSignatures>();
    std::string languageCode = {};  ///< the user's language (BCP 47: "es-MX"), for a string table that does
                                    ///< not tell its own; empty: not known
};

/// Installs the ports; call it on the main thread, before `initialize`. A later call replaces them, which is
/// meant for tests between journeys. Returns false, and installs nothing, when a port is missing.
bool installPorts(Ports ports);

/// Ports are in use. Main thread.
bool portsInstalled();

/// Lets go of the ports, at the end of an app's `main` when no journey is left. The adapters then end their
/// threads while the libraries that they use are still there; without this they run until the process ends.
/// Main thread.
void uninstallPorts();

/// The ports in use. Calling it before `installPorts` ends the process with a message on standard error:
/// there is nothing yet that could carry a failure. Any thread, as long as nobody installs.
const Ports& ports();

}  // namespace korvane
