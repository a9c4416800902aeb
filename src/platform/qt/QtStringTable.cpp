// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/QtStringTable.h"

#include <QTranslator>
#include <QtGlobal>
#include <utility>

namespace korvane {

QtStringTable::QtStringTable() : own_(std::make_unique<QTranslator>()) {}
QtStringTable::~QtStringTable() = default;

bool QtStringTable::load(const QString& path) {
    auto translator = std::make_unique<QTranslator>();  // loading into the one in use would empty it first
    if (!translator->load(path)) return false;
    own_ = std::move(translator);
    return true;
}

std::string QtStringTable::text(std::string_view key) const {
    const std::string id{key};
    QString found = own_->translate("", id.c_str());  // an id is a source text without a context
    if (found.isEmpty()) found = qtTrId(id.c_str());
    return found.isEmpty() ? id : found.toStdString();
}

}  // namespace korvane
