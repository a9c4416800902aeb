// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Journey.h>

#include <string>

#include "base/Secret.h"

namespace korvane {

/// Overwrites what a person revealed or typed, for `Wiped<ScreenSnapshot>`.
void wipe(ScreenSnapshot& screen);

/// The screen as one JSON object (RFC 8259). What is empty or absent is left out, but for the members that
/// every screen has; the card's picture is told by its size in bytes.
Wiped<std::string> snapshotJson(const ScreenSnapshot& screen);

}  // namespace korvane
