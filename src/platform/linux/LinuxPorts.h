// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>
#include <korvane/platform/BiometricPrompt.h>
#include <korvane/platform/LogValues.h>
#include <korvane/platform/Ports.h>

#include <concepts>
#include <memory>
#include <string>

typedef struct _GMainContext GMainContext;

namespace korvane {

/// What `linuxPorts` is made with. The defaults are meant for use.
struct LinuxPortsOptions {
    /// PEM file of the certificate authorities to trust instead of the system's; empty: the system's
    std::string caFile = {};
    /// Whether the log shows values. Which build counts is that of Korvane::Linux.
    LogValues logValues = LogValues::byBuild;
    /// Tells the person to touch the reader of fprintd; none: a device without biometrics
    std::shared_ptr<BiometricPrompt> prompt = nullptr;
    /// Of the app in the keyring, which all apps of the user share: the same each time it is started. Empty:
    /// the executable's file name
    std::string appId = {};
    /// Of the main loop, not owned; none: GLib's default one
    GMainContext* context = nullptr;
};

/// The ports of an app on Linux that has no toolkit, for `installPorts`: GLib's main loop, HTTPS over
/// libcurl, the log on standard output, secure items in the Secret Service's keyring, the language of the
/// process's messages. Texts stand for themselves as keys, pictures are known by their signature, and there
/// is no pasteboard: put your own in their place before you install. Nothing here waits for a daemon.
///
/// Call it on the main thread.
KORVANE_API Ports linuxPorts(const LinuxPortsOptions& options = {});

/// The same with the CA file alone.
template <std::convertible_to<std::string> Text>
Ports linuxPorts(const Text& caFile) {
    return linuxPorts(LinuxPortsOptions{.caFile = caFile});
}
/// The same, one value after the other.
KORVANE_API Ports linuxPorts(const std::string& caFile, std::shared_ptr<BiometricPrompt> prompt,
                             GMainContext* context = nullptr);

}  // namespace korvane
