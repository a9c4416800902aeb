// SPDX-License-Identifier: Apache-2.0
#include "uikit/quick/Announcement.h"

namespace korvane {

Announcement::Announcement(QQuickItem* parent) : QQuickItem(parent) {
    ItemAccessible::install();
    setVisible(false);
}

void Announcement::setText(const QString& text) {
    if (text_ == text) return;
    text_ = text;
    emit textChanged();
    send(QAccessible::NameChanged);
    // Qt tells that an item begins to show; that one which shows has other words, it does not.
    if (isVisible() && !text_.isEmpty()) send(QAccessible::ObjectShow);
    setVisible(!text_.isEmpty());
}

void Announcement::send(QAccessible::Event kind) {
    if (!QAccessible::isActive()) return;
    QAccessibleEvent event(this, kind);
    QAccessible::updateAccessibility(&event);
}

QString AnnouncementAccessible::text(QAccessible::Text kind) const {
    return kind == QAccessible::Name ? words_.text() : QString();
}

}  // namespace korvane
