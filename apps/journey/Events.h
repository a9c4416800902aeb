// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <rapidjson/document.h>

#include <string>
#include <string_view>

namespace korvane {

/// The lines that the console writes: one JSON object each (RFC 8259), without the line feed.
/// {"event": name, member: text}
std::string event(std::string_view name, std::string_view member, std::string_view text);
/// {"event":"custody", …}: whether the PCI token is in memory, and whether its time was up.
std::string custodyEvent(bool tokenInMemory, bool timerPciExpired);
/// Of a screen as the component tells it: its view, stack, state and controls.
std::string screenEvent(const rapidjson::Document& screen);

/// True when the screens differ in more than numbers that count down.
bool differ(const rapidjson::Document& one, const rapidjson::Document& other);

}  // namespace korvane
