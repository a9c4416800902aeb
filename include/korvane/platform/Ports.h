// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>
#include <korvane/platform/BackgroundQueue.h>
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
    /// The main thread's work. No stand-in.
    std::shared_ptr<MainQueue> mainQueue;
    /// Its timers. No stand-in.
    std::shared_ptr<Timers> timers;
    /// The way to the card service. No stand-in.
    std::shared_ptr<UrlSession> urlSession;
    /// The log. No stand-in; in a release build a console of the host's own wants a `RedactingConsole` in
    /// front.
    std::shared_ptr<Console> console;
    /// Where the PCI token is kept when biometrics are on. Without one: the SMS step at each start.
    std::shared_ptr<SecureItemStore> secureItemStore = std::make_shared<NoSecureItemStore>();
    /// The finger reader. Without one: as with biometrics off.
    std::shared_ptr<BiometricContext> biometricContext = std::make_shared<NoBiometricContext>();
    /// Texts by key: what the screens show, and why a finger is wanted. Without one: the keys.
    std::shared_ptr<StringTable> stringTable = std::make_shared<KeyStringTable>();
    /// Where a card's details are copied to. Without one: copying fails, and the screen says so.
    std::shared_ptr<Pasteboard> pasteboard = std::make_shared<NoPasteboard>();
    /// Decodes the card's picture. Null: `installPorts` puts an `ImageSignatures` there.
    std::shared_ptr<ImageDecoder> imageDecoder = {};
    std::string languageCode = {};  ///< the user's language (BCP 47: "es-MX"), for a string table that does
                                    ///< not tell its own; empty: not known
    /// Where store and reader are asked. Null: `installPorts` puts a thread of its own there. The last one,
    /// so that its work ends while the other ports are there.
    std::shared_ptr<BackgroundQueue> backgroundQueue = {};
};

/// Installs the ports; call it on the main thread, before `initialize`. A later call ends the session (see
/// `logOut`; what the store holds stays) and replaces them, which is meant for tests between journeys.
/// Returns false, and installs nothing, when a port is missing.
KORVANE_API bool installPorts(Ports ports);

/// Ports are in use. Main thread.
KORVANE_API bool portsInstalled();

/// Lets go of the ports, at the end of an app's `main` when no journey is left. The adapters then end their
/// threads while the libraries that they use are still there; without this they run until the process ends.
/// Work that is under way in the secure store is waited for: 2 s at most when a keyring hangs. Main thread.
KORVANE_API void uninstallPorts();

/// The ports in use. Calling it before `installPorts` ends the process with a message on standard error:
/// there is nothing yet that could carry a failure. Any thread, as long as nobody installs.
KORVANE_API const Ports& ports();

}  // namespace korvane
