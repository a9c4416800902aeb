// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/QtStringTable.h"

#include <QTranslator>
#include <QtGlobal>
#include <algorithm>

namespace korvane {

QtStringTable::QtStringTable() : own_(std::make_unique<QTranslator>()) {}
QtStringTable::~QtStringTable() = default;

bool QtStringTable::load(const QString& path, const QString& language) {
    auto translator = std::make_unique<QTranslator>();  // loading into the one in use would empty it first
    if (!translator->load(path)) return false;
    own_ = std::move(translator);
    language_ = language.isEmpty() ? own_->language() : language;
    return true;
}

void QtStringTable::overrideText(const QString& key, const QString& text, const QString& language) {
    const std::pair place{language.toLower(), key};
    if (text.isEmpty()) {
        overrides_.remove(place);
    } else {
        overrides_.insert(place, text);
    }
}

bool QtStringTable::overrides(const QString& language) const {
    return std::any_of(overrides_.keyBegin(), overrides_.keyEnd(),
                       [wanted = language.toLower()](const auto& place) { return place.first == wanted; });
}

QString QtStringTable::overriding(const QString& key) const {
    const QString language = language_.toLower();
    for (const QString& place : {language, language.section(u'-', 0, 0), QString()}) {
        const auto found = overrides_.find({place, key});
        if (found != overrides_.end()) return *found;
    }
    return {};
}

std::string QtStringTable::text(std::string_view key) const {
    const std::string id{key};
    QString found = overriding(QString::fromStdString(id));
    if (found.isEmpty()) found = own_->translate("", id.c_str());  // an id is a source text without a context
    if (found.isEmpty()) found = qtTrId(id.c_str());
    return found.isEmpty() ? id : found.toStdString();
}

}  // namespace korvane
