// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAccessible>
#include <QAccessibleObject>
#include <QList>

class QQuickItem;

namespace korvane {

/// How an item of ours is met by assistive technology, where the toolkit's own way tells too much or too
/// little: place, parents and children are the same for all of them. An item needs its `Accessible` attached
/// properties too, which make it part of the tree. Main thread; Qt owns it.
class ItemAccessible : public QAccessibleObject, public QAccessibleActionInterface {
  public:
    /// Makes boxes, card values, announcements and everything that draws a control be met like this. Once is
    /// enough; more does no harm.
    static void install();

    explicit ItemAccessible(QQuickItem* item);

    QAccessibleInterface* parent() const override;
    QAccessibleInterface* child(int index) const override { return children().value(index); }
    int childCount() const override { return static_cast<int>(children().size()); }
    int indexOfChild(const QAccessibleInterface* child) const override;
    QWindow* window() const override;
    QRect rect() const override;
    QAccessible::State state() const override;
    void* interface_cast(QAccessible::InterfaceType type) override;

    QStringList actionNames() const override { return {}; }
    void doAction(const QString&) override {}
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

  protected:
    QQuickItem* item() const;
    void focus();

  private:
    QList<QAccessibleInterface*> children() const;
};

/// A button, a switch or a row that can be tapped: Qt 6.4 does not tell of an item that it is disabled.
///
/// Its name is the item's `spokenName`, or its `text` where there is none; `spokenDescription` adds to it. An
/// item with a property `on` is a switch. (The `Accessible` attached properties cannot be asked from here:
/// they may be about to be made.)
class ControlAccessible final : public ItemAccessible {
  public:
    explicit ControlAccessible(QQuickItem* item);

    QAccessible::Role role() const override;
    QAccessible::State state() const override;
    QString text(QAccessible::Text kind) const override;

    QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }
    void doAction(const QString& name) override;
};

}  // namespace korvane
