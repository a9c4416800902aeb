// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Journey.h>

#include <string>
#include <string_view>

namespace korvane {

/// The lines that the console writes: one JSON object each (RFC 8259), without the line feed.
std::string screenEvent(const ScreenSnapshot& screen);
std::string toastEvent(std::string_view id);
std::string pasteboardEvent(std::string_view text);
std::string closeEvent(std::string_view result);
/// {"event":"prompt", member: text}: the biometric prompt came ("reason"), tells ("message"), or went
/// ("shown").
std::string promptEvent(std::string_view member, std::string_view text);
/// {"event":"custody", …}: whether the PCI token is in memory, and whether its time was up.
std::string custodyEvent(bool tokenInMemory, bool timerPciExpired);
std::string errorEvent(std::string_view message);

/// True when the screens differ in more than numbers that count down.
bool differ(const ScreenSnapshot& one, const ScreenSnapshot& other);

}  // namespace korvane
