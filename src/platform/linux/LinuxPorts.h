// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>
#include <korvane/platform/BiometricPrompt.h>
#include <korvane/platform/Ports.h>

#include <memory>
#include <string>

typedef struct _GMainContext GMainContext;

namespace korvane {

/// The ports of an app on Linux that has no toolkit, for `installPorts`: GLib's main loop, HTTPS over
/// libcurl, the log on standard output, secure items in the Secret Service's keyring, the language of the
/// process's messages. Texts stand for themselves as keys, pictures are known by their signature, and there
/// is no pasteboard: put your own in their place before you install. Nothing here waits for a daemon.
///
/// Call it on the main thread.
///
/// @param caFile   PEM file of the certificate authorities to trust instead of the system's; empty: the
/// system's
/// @param prompt   tells the person to touch the reader of fprintd; none: a device without biometrics
/// @param context  of the main loop, not owned; none: GLib's default one
KORVANE_API Ports linuxPorts(const std::string& caFile = {},
                             std::shared_ptr<BiometricPrompt> prompt = nullptr,
                             GMainContext* context = nullptr);

}  // namespace korvane
