// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/QtPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <memory>

namespace korvane {
namespace {

QClipboard* clipboard() {
    const bool hasOne = qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
    return hasOne ? QGuiApplication::clipboard() : nullptr;
}

}  // namespace

bool QtPasteboard::setString(const std::string& text) {
    QClipboard* const target = clipboard();
    if (!target) return false;
    auto data = std::make_unique<QMimeData>();
    data->setText(QString::fromStdString(text));
    data->setData("x-kde-passwordManagerHint", "secret");  // the hint that password managers agreed on
    put_ = data.get();
    target->setMimeData(data.release());
    ownershipIsTold_ = target->ownsClipboard();
    return true;
}

void QtPasteboard::clearIfHolds(const std::string& text) {
    QClipboard* const target = clipboard();
    const bool isOurs = target && put_ && (!ownershipIsTold_ || target->ownsClipboard());
    if (isOurs && put_->text() == QString::fromStdString(text)) target->clear();
}

}  // namespace korvane
