// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>

#include <string>
#include <vector>

namespace korvane {

// The language of everything that the component shows, in a Qt app that uses `qtPorts`. Needs Korvane::Quick
// and installed ports; main thread only. A host with a string table of its own switches that one instead, and
// the calls here answer false.
//
// The app's own texts are left alone: nothing here installs a translator, changes the default locale, or has
// the host's bindings evaluated again.

/// The languages that the component speaks, as BCP 47 codes in alphabetical order: "ar", "de", "en", "es",
/// "fr".
KORVANE_API std::vector<std::string> languages();

/// Switches to another language at once: titles, buttons, messages, toasts and accessible names on screen,
/// their direction too. Which language the next disclosure text comes in follows. Until the first call it is
/// the user's (the first of the UI languages that the component speaks, else English).
///
/// @param language  BCP 47, "fr" or "fr-CH" ("fr_CH" is taken too): one that the component speaks in some
///                  region, or one for which the host has given texts with `overrideText`; what those leave
///                  out is then English
/// @return false, and nothing changes, when it is neither
KORVANE_API bool setLanguage(const std::string& language);

/// The language in use, as it was given to `setLanguage` ("fr-CH"); empty when the string table does not
/// tell.
KORVANE_API std::string language();

/// The language in use is written from right to left, and the screens are mirrored.
KORVANE_API bool isRightToLeft();

/// Puts the host's `text` (UTF-8) in the place of the component's for that key, on screen at once. Keep the
/// placeholders ("%1") that the component's own text has, see src/uikit/quick/i18n.
///
/// @param key       a localization key, "sdk.setpin.button"
/// @param text      empty: gives the key its own text back
/// @param language  "de", or "de-CH" for that region alone; empty: in every language
/// @return false, and nothing changes, with a string table of the host's
KORVANE_API bool overrideText(const std::string& key, const std::string& text,
                              const std::string& language = {});

}  // namespace korvane
