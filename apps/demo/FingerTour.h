// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

class QQuickWindow;

/// Plays a visit of a cardholder with biometrics on. At the first one nothing is in the keyring yet, and
/// an SMS code is needed; at the next one the person shows a wrong finger, then the right one, and needs no
/// SMS. Writes pictures to `directory`. Whoever runs this touches the reader: a line on standard output asks
/// for it, "Finger: right" or "Finger: wrong". Blocks until it is through, while events go on.
///
/// @return 0 when the PIN entry came; 1, with the reason on standard error, otherwise
int playFingerTour(QQuickWindow& window, const QString& directory, bool nextVisit);
