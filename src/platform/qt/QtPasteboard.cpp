// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/QtPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <memory>

namespace korvane {

void QtPasteboard::setString(const std::string& text) {
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance())) return;
    auto data = std::make_unique<QMimeData>();
    data->setText(QString::fromStdString(text));
    data->setData("x-kde-passwordManagerHint", "secret");  // the hint that password managers agreed on
    QGuiApplication::clipboard()->setMimeData(data.release());
}

}  // namespace korvane
