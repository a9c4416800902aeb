// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>

namespace korvane {

/// Saves the first journey three round trips: asks the host for an IV and renews the bearer token, which
/// opens the connection. Call it once the person has logged in, after `initialize`, on the main thread.
///
/// It shows nothing and reports nothing. When it fails (no IV, no network, a service that refuses) a journey
/// does what it does without it. A journey that starts meanwhile waits for what is under way, for 30 s at
/// most. It does nothing before `initialize`, while it is at work, and while a bearer token is held. The
/// session's end drops it.
///
/// The service gets the token request with the card id of the last journey, or with an empty one.
KORVANE_API void prepare();

}  // namespace korvane
