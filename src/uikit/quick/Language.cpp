// SPDX-License-Identifier: Apache-2.0
#include <korvane/Language.h>

#include <korvane/CloseNotification.h>
#include <korvane/platform/Ports.h>

#include <QDir>
#include <QLocale>
#include <memory>

#include "platform/qt/QtStringTable.h"
#include "sdk/ChangeNotifications.h"
#include "uikit/quick/ComponentTexts.h"

namespace korvane {
namespace {

const QString folder = QStringLiteral(":/korvane/i18n/");

QString tableOf(const QString& language) {
    return folder + QStringLiteral("korvane_%1.qm").arg(language.section(u'-', 0, 0).toLower());
}

/// False when neither the component nor the host speaks the language.
bool take(QtStringTable& table, QString language) {
    language.replace(u'_', u'-');
    if (language.isEmpty()) return false;
    if (table.load(tableOf(language), language)) return true;
    const bool hosts = table.overrides(language) || table.overrides(language.section(u'-', 0, 0));
    return hosts && table.load(tableOf(QStringLiteral("en")), language);
}

std::shared_ptr<QtStringTable> ours() {
    return std::dynamic_pointer_cast<QtStringTable>(ports().stringTable);
}

void tellOfChange() {
    NotificationCenter::defaultCenter().post(NotificationLanguageChanged, {});
}

}  // namespace

std::shared_ptr<StringTable> componentTexts() {
    auto table = std::make_shared<QtStringTable>();
    QStringList languages = QLocale().uiLanguages();
    languages.append(QStringLiteral("en"));
    for (const QString& language : std::as_const(languages)) {
        if (take(*table, language)) break;
    }
    return table;
}

std::vector<std::string> languages() {
    std::vector<std::string> codes;
    const QStringList files =
        QDir(folder).entryList({QStringLiteral("korvane_*.qm")}, QDir::Files, QDir::Name);
    for (const QString& file : files)
        codes.push_back(file.section(u'_', 1).section(u'.', 0, 0).toStdString());
    return codes;
}

bool setLanguage(const std::string& language) {
    const auto table = ours();
    if (!table || !take(*table, QString::fromStdString(language))) return false;
    tellOfChange();
    return true;
}

std::string language() {
    return ports().stringTable->language();
}

bool isRightToLeft() {
    return QLocale(QString::fromStdString(language())).textDirection() == Qt::RightToLeft;
}

bool overrideText(const std::string& key, const std::string& text, const std::string& language) {
    const auto table = ours();
    if (!table) return false;
    table->overrideText(QString::fromStdString(key), QString::fromStdString(text),
                        QString::fromStdString(language).replace(u'_', u'-'));
    tellOfChange();
    return true;
}

}  // namespace korvane
