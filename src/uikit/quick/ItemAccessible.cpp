// SPDX-License-Identifier: Apache-2.0
#include "uikit/quick/ItemAccessible.h"

#include <QQuickItem>
#include <QQuickWindow>

#include "uikit/quick/Announcement.h"
#include "uikit/quick/CardValue.h"
#include "uikit/quick/PasscodeAccessible.h"
#include "uikit/quick/PasscodeItem.h"

namespace korvane {
namespace {

QAccessibleInterface* make(const QString&, QObject* object) {
    if (auto* const boxes = qobject_cast<PasscodeItem*>(object)) return new PasscodeAccessible(boxes);
    if (auto* const words = qobject_cast<Announcement*>(object)) return new AnnouncementAccessible(words);
    if (auto* const value = qobject_cast<CardValue*>(object)) return new CardValueAccessible(value);
    // Only our own buttons have a control; those of the host are none of our business.
    const bool button =
        object->inherits("QQuickAbstractButton") && object->property("control").canConvert<ControlModel*>();
    return button ? new ControlAccessible(static_cast<QQuickItem*>(object)) : nullptr;
}

/// Qt gives an interface to items too that have no role and are no part of the tree.
QAccessibleInterface* partOfTree(QQuickItem* item) {
    auto* const interface = QAccessible::queryAccessibleInterface(item);
    return interface && interface->role() != QAccessible::Client ? interface : nullptr;
}

void collect(const QQuickItem& item, QList<QAccessibleInterface*>& found) {
    for (QQuickItem* const child : item.childItems()) {
        auto* const interface = partOfTree(child);
        // What says nothing is only drawn.
        if (interface && !interface->text(QAccessible::Name).isEmpty()) {
            found.append(interface);
        } else {
            collect(*child, found);
        }
    }
}

}  // namespace

void ItemAccessible::install() {
    QAccessible::installFactory(make);
}

ItemAccessible::ItemAccessible(QQuickItem* item) : QAccessibleObject(item) {}

QQuickItem* ItemAccessible::item() const {
    return static_cast<QQuickItem*>(object());
}

QAccessibleInterface* ItemAccessible::parent() const {
    QQuickWindow* const window = item()->window();
    for (QQuickItem* above = item()->parentItem(); above && window && above != window->contentItem();
         above = above->parentItem()) {
        if (auto* const found = partOfTree(above)) return found;
    }
    return QAccessible::queryAccessibleInterface(window);
}

QList<QAccessibleInterface*> ItemAccessible::children() const {
    QList<QAccessibleInterface*> found;
    collect(*item(), found);
    return found;
}

int ItemAccessible::indexOfChild(const QAccessibleInterface* child) const {
    return static_cast<int>(children().indexOf(child));
}

QWindow* ItemAccessible::window() const {
    return item()->window();
}

QRect ItemAccessible::rect() const {
    const QRectF area = item()->mapRectToScene(item()->boundingRect());
    return {item()->window() ? item()->window()->mapToGlobal(area.topLeft()).toPoint() : QPoint(),
            area.size().toSize()};
}

QAccessible::State ItemAccessible::state() const {
    QAccessible::State state;
    const bool shown = item()->isVisible() && item()->window() && item()->window()->isVisible();
    state.invisible = !shown;
    state.offscreen = shown && !QRectF(QPointF(), item()->window()->size())
                                    .intersects(item()->mapRectToScene(item()->boundingRect()));
    state.disabled = !item()->isEnabled();
    return state;
}

void* ItemAccessible::interface_cast(QAccessible::InterfaceType type) {
    if (type != QAccessible::ActionInterface || actionNames().isEmpty()) return nullptr;
    return static_cast<QAccessibleActionInterface*>(this);
}

void ItemAccessible::focus() {
    item()->forceActiveFocus(Qt::OtherFocusReason);
}

ControlAccessible::ControlAccessible(QQuickItem* item) : ItemAccessible(item) {
    QObject::connect(item, &QQuickItem::enabledChanged, item, [item] {
        QAccessible::State changed;
        changed.disabled = true;
        QAccessibleStateChangeEvent event(item, changed);
        QAccessible::updateAccessibility(&event);
    });
}

QAccessible::Role ControlAccessible::role() const {
    return item()->property("on").isValid() ? QAccessible::CheckBox : QAccessible::Button;
}

QAccessible::State ControlAccessible::state() const {
    QAccessible::State state = ItemAccessible::state();
    state.focusable = true;
    state.focused = item()->hasActiveFocus();
    state.pressed = item()->property("pressed").toBool();
    state.checkable = role() == QAccessible::CheckBox;
    state.checked = item()->property("on").toBool();
    return state;
}

QString ControlAccessible::text(QAccessible::Text kind) const {
    if (kind == QAccessible::Description) return item()->property("spokenDescription").toString();
    if (kind != QAccessible::Name) return {};
    const QVariant name = item()->property("spokenName");
    return (name.isValid() ? name : item()->property("text")).toString();
}

void ControlAccessible::doAction(const QString& name) {
    if (name == setFocusAction()) return focus();
    auto* const control = item()->property("control").value<ControlModel*>();
    if (name == pressAction() && item()->isEnabled() && control) control->activate();
}

}  // namespace korvane
