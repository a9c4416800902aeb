// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QSize>
#include <QString>

#include "common/HostService.h"

class QQuickWindow;

/// Plays all journeys on the window by themselves, with taps and keys as a person's, and writes pictures of
/// each screen to `directory`: one for each size, in a folder of its own where there are several, and another
/// of its end where it must be scrolled. Tells on standard output what it does. Blocks until it is through,
/// while events go on.
///
/// @param sizes  of the window, in device-independent pixels; the last one stays
/// @return 0 when every screen came and the service holds what was done; 1, with the reason on standard
/// error, otherwise
int playTour(QQuickWindow& window, korvane::HostService& service, const QString& directory,
             const QList<QSize>& sizes);
