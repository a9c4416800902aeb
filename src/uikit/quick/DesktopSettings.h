// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QVariantMap>
#include <QtDBus/QDBusMessage>

namespace korvane {

/// What the person has set for all apps of the desktop: larger text, less motion. Main thread.
///
/// Text size comes from the screen's logical resolution (96 dots per inch are one) and from the desktop's
/// settings, whichever is larger, because a desktop tells it in one of them or in both. Motion comes from the
/// settings alone. They are asked for over the session bus (XDG Desktop Portal, interface Settings) and
/// watched; without a bus or a portal nothing is larger and nothing is reduced.
class DesktopSettings : public QObject {
    Q_OBJECT

  public:
    explicit DesktopSettings(QObject* parent = nullptr);

    /// 1 is the normal size; never less.
    double textScale() const;
    bool reducedMotion() const;

  signals:
    void changed();

  private slots:
    void take(const QDBusMessage& signal);

  private:
    void watchPortal();

    QVariantMap values_;  ///< by key; the keys of the groups that are asked for are distinct
};

}  // namespace korvane
