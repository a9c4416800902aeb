// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QQuickItem>
#include <QString>

#include "uikit/quick/ItemAccessible.h"

namespace korvane {

/// Words that assistive technology is to say at once, wherever the focus is: errors, toasts, that a call is
/// under way (WCAG 2.2, 4.1.3). It draws nothing. Each text that is not empty is said once.
///
/// Qt 6.4 has no event for this. What screen readers on AT-SPI listen to is a notification that begins to
/// show, so that is what a new text makes of this item. It needs the role Notification.
class Announcement : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)

  public:
    explicit Announcement(QQuickItem* parent = nullptr);

    QString text() const { return text_; }
    void setText(const QString& text);

  signals:
    void textChanged();

  private:
    void send(QAccessible::Event kind);

    QString text_;
};

class AnnouncementAccessible final : public ItemAccessible {
  public:
    explicit AnnouncementAccessible(Announcement* words) : ItemAccessible(words), words_(*words) {}

    QAccessible::Role role() const override { return QAccessible::Notification; }
    QString text(QAccessible::Text kind) const override;

  private:
    const Announcement& words_;
};

}  // namespace korvane
