// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>
#include <korvane/platform/LogValues.h>
#include <korvane/platform/Ports.h>

#include <concepts>
#include <string>

namespace korvane {

/// What `qtPorts` is made with. The defaults are meant for use.
struct QtPortsOptions {
    /// PEM file of the certificate authorities to trust instead of the system's; empty: the system's
    std::string caFile = {};
    /// Whether the log shows values. Which build counts is that of Korvane::Quick.
    LogValues logValues = LogValues::byBuild;
    /// Of the app in the keyring, which all apps of the user share: the same each time it is started. Empty:
    /// the desktop file's name (QGuiApplication::desktopFileName), or else the executable's
    std::string appId = {};
};

/// The ports of a Qt app on Linux, for `installPorts`: Qt's event loop, timers and clipboard, HTTPS over
/// libcurl, the component's texts in the user's language (English where there is none), its log on standard
/// output, secure items in the Secret Service's keyring, fingers by fprintd with a sheet that says so over
/// the app's window. Nothing here waits for a daemon; on a device without them it is as with biometrics off.
///
/// Needs Korvane::Quick. Call it on the main thread, with a QGuiApplication.
KORVANE_API Ports qtPorts(const QtPortsOptions& options = {});

/// The same with the CA file alone.
template <std::convertible_to<std::string> Text>
Ports qtPorts(const Text& caFile) {
    return qtPorts(QtPortsOptions{.caFile = caFile});
}

}  // namespace korvane
