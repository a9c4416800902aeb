// SPDX-License-Identifier: Apache-2.0
#include <korvane/QtPorts.h>

#include <QGuiApplication>
#include <QLocale>
#include <memory>

#include "platform/LogConsole.h"
#include "platform/linux/CurlUrlSession.h"
#include "platform/linux/FprintdContext.h"
#include "platform/linux/SecretServiceStore.h"
#include "platform/linux/StdoutConsole.h"
#include "platform/qt/QtImageDecoder.h"
#include "platform/qt/QtMainQueue.h"
#include "platform/qt/QtPasteboard.h"
#include "platform/qt/QtTimers.h"
#include "uikit/quick/ComponentTexts.h"
#include "uikit/quick/QuickBiometricPrompt.h"

namespace korvane {

Ports qtPorts(const QtPortsOptions& options) {
    CurlUrlSessionOptions session;
    session.caFile = options.caFile;
    const auto mainQueue = std::make_shared<QtMainQueue>();
    const std::string appId =
        options.appId.empty() ? QGuiApplication::desktopFileName().toStdString() : options.appId;
    return {.mainQueue = mainQueue,
            .timers = std::make_shared<QtTimers>(),
            .urlSession = std::make_shared<CurlUrlSession>(session),
            .console = logConsole(std::make_shared<StdoutConsole>(), options.logValues),
            .secureItemStore = std::make_shared<SecretServiceStore>(SecretServiceStoreOptions{appId}),
            .biometricContext =
                std::make_shared<FprintdContext>(mainQueue, std::make_shared<QuickBiometricPrompt>()),
            .stringTable = componentTexts(),
            .pasteboard = std::make_shared<QtPasteboard>(),
            .imageDecoder = std::make_shared<QtImageDecoder>(mainQueue),
            .languageCode = QLocale().uiLanguages().value(0).toStdString()};
}

/// In no header any more: for hosts that were compiled with 1.0.
KORVANE_API Ports qtPorts(const std::string& caFile);
Ports qtPorts(const std::string& caFile) {
    return qtPorts(QtPortsOptions{.caFile = caFile});
}

}  // namespace korvane
