// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include "common/HostService.h"

class QQuickWindow;

/// Plays the whole set-PIN journey on the window by itself, with taps and keys as a person's, and writes a
/// picture of each screen to `directory`. Tells on standard output what it does. Blocks until it is through,
/// while events go on.
///
/// @return 0 when the service holds the PIN that was typed; 1, with the reason on standard error, otherwise
int playTour(QQuickWindow& window, korvane::HostService& service, const QString& directory);
