// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Prepare.h>

#include <QtQml/qqmlregistration.h>
#include <QObject>

namespace korvane {

/// What a host calls of the component itself: `Korvane.prepare()`. Main thread.
class KorvaneSingleton : public QObject {
    Q_OBJECT
    QML_NAMED_ELEMENT(Korvane)
    QML_SINGLETON

  public:
    /// See `korvane::prepare`.
    Q_INVOKABLE void prepare() const { korvane::prepare(); }
};

}  // namespace korvane
