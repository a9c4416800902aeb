// SPDX-License-Identifier: Apache-2.0
#include "uikit/quick/ControlModel.h"

#include <korvane/platform/Ports.h>

#include <utility>

namespace korvane {

ControlModel::ControlModel(const Control& control, bool primary, Action action, QObject* parent)
    : QObject(parent),
      id_(control.id),
      kind_(control.kind),
      primary_(primary),
      action_(std::move(action)),
      usable_(control.enabled) {}

QString ControlModel::symbol() const {
    switch (kind_) {
        case ControlKind::back:
            return QStringLiteral("back");
        case ControlKind::close:
            return QStringLiteral("xmark");
        case ControlKind::row:
            return QStringLiteral("info.circle");
        default:
            return {};
    }
}

QString ControlModel::busyText() const {
    return busy_ ? QString::fromStdString(ports().stringTable->text("sdk.accessibility.busy")) : QString();
}

void ControlModel::setLabel(const QString& label) {
    if (label_ == label) return;
    label_ = label;
    emit labelChanged();
}

void ControlModel::setUsable(bool usable) {
    if (usable_ == usable) return;
    usable_ = usable;
    emit usableChanged();
}

void ControlModel::setOn(bool on) {
    if (on_ == on) return;
    on_ = on;
    emit onChanged();
}

void ControlModel::setBusy(bool busy) {
    if (busy_ == busy) return;
    busy_ = busy;
    emit busyChanged();
}

void ControlModel::activate() {
    if (!usable_) return;
    // Copies, because the action may end the journey and this object with it.
    const Action action = action_;
    const std::string id = id_;
    action(id);
}

BulletModel::BulletModel(const Bullet& bullet, QObject* parent)
    : QObject(parent),
      symbol_(QString::fromStdString(bullet.symbol)),
      text_(QString::fromStdString(ports().stringTable->text(bullet.text))) {}

}  // namespace korvane
