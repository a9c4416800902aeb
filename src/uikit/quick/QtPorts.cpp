// SPDX-License-Identifier: Apache-2.0
#include <korvane/QtPorts.h>

#include <QLocale>
#include <memory>

#include "platform/linux/CurlUrlSession.h"
#include "platform/linux/StdoutConsole.h"
#include "platform/qt/QtImageDecoder.h"
#include "platform/qt/QtMainQueue.h"
#include "platform/qt/QtPasteboard.h"
#include "platform/qt/QtStringTable.h"
#include "platform/qt/QtTimers.h"

namespace korvane {
namespace {

std::shared_ptr<StringTable> componentTexts() {
    auto table = std::make_shared<QtStringTable>();
    QStringList languages = QLocale().uiLanguages();
    languages.append(QStringLiteral("en"));
    for (const QString& language : languages) {
        const QString code = language.section(u'-', 0, 0);
        if (table->load(QStringLiteral(":/korvane/i18n/korvane_%1.qm").arg(code))) break;
    }
    return table;
}

}  // namespace

Ports qtPorts(const std::string& caFile) {
    CurlUrlSessionOptions session;
    session.caFile = caFile;
    return {.mainQueue = std::make_shared<QtMainQueue>(),
            .timers = std::make_shared<QtTimers>(),
            .urlSession = std::make_shared<CurlUrlSession>(session),
            .console = std::make_shared<StdoutConsole>(),
            .stringTable = componentTexts(),
            .pasteboard = std::make_shared<QtPasteboard>(),
            .imageDecoder = std::make_shared<QtImageDecoder>(),
            .languageCode = QLocale().uiLanguages().value(0).toStdString()};
}

}  // namespace korvane
