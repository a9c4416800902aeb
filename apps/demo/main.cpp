// SPDX-License-Identifier: Apache-2.0
#include <korvane/CloseNotification.h>
#include <korvane/Initialize.h>
#include <korvane/Language.h>
#include <korvane/QtPorts.h>
#include <korvane/ViewController.h>

#include <QCommandLineParser>
#include <QFile>
#include <QQmlApplicationEngine>
#include <QQuickWindow>

#include "DemoHost.h"
#include "FingerTour.h"
#include "Looks.h"
#include "Tour.h"
#include "common/BackEnd.h"
#include "common/HostIv.h"

namespace {

/// One journey in a window of its own; the exit status tells how it ended, as korvane-journey's does.
int showJourney(const QString& kind, const std::string& card) {
    auto controller = kind == "card"       ? korvane::GetCardImageFactory::create(card)
                      : kind == "activate" ? korvane::ActivateCardAndSetPINFactory::create(card)
                                           : korvane::SetPINFactory::create(card);
    const auto closing = korvane::NotificationCenter::defaultCenter().observe(
        korvane::NotificationCloseUI, [&](const korvane::NotificationUserInfo& info) {
            const std::string& result = info.at("result");
            controller.reset();
            QCoreApplication::exit(result == "SUCCESS" ? 0 : result == "CANCELED" ? 3 : 4);
        });
    controller->show();
    return QCoreApplication::exec();
}

/// How the host pictures its wearable. From a file: a picture drawn and compressed here took 30 ms of the
/// start, longer than the window itself.
korvane::ImageData watchPicture() {
    QFile file(":/qt-project.org/imports/KorvaneDemo/watch.png");
    if (!file.open(QIODevice::ReadOnly)) return {};
    const QByteArray bytes = file.readAll();
    const auto* const first = reinterpret_cast<const std::byte*>(bytes.constData());
    return {first, first + bytes.size()};
}

}  // namespace

int main(int argc, char** argv) {
    QGuiApplication app(argc, argv);
    QCommandLineParser options;
    options.addHelpOption();
    options.addOptions(
        {{"service", "Card service to use instead of the built-in one.", "URL"},
         {"key", "Its pre-shared key.", "BASE64"},
         {"iv-url", "Where the host gets IVs (default: /host/iv under the service).", "URL"},
         {"ca", "PEM file of the certificate authorities to trust.", "FILE"},
         {"size", "Size of the window.", "WxH", "390x844"},
         {"language", "Language of the journeys: ar, de, en, es, fr (default: the user's).", "CODE"},
         {"palette", "Look of the journeys: default, dark, brand.", "NAME", "default"},
         {"biometrics", "Keep the PCI token behind a fingerprint check.", "on|off", "off"},
         {"journey", "Show this journey alone: set-pin, activate, card.", "KIND"},
         {"card", "The card of that journey.", "ID", "card-physical-active"},
         {"finger-tour", "Play a visit with biometrics on, with pictures in DIR.", "DIR"},
         {"next-visit", "That visit is not the first: the token is in the keyring."},
         {"tour", "Play all journeys by themselves, with pictures in DIR: of three sizes, or of one.",
          "DIR"}});
    options.process(app);
    const auto option = [&](const char* name) { return options.value(name).toStdString(); };
    int width = 0, height = 0;
    if (std::sscanf(option("size").c_str(), "%dx%d", &width, &height) != 2)
        return qCritical("--size takes WxH."), 2;
    const auto chosen = look(option("palette"));
    if (!chosen) return qCritical("--palette takes default, dark or brand."), 2;
    const auto backEnd = korvane::backEnd(option("service"), option("key"), option("iv-url"), option("ca"));
    if (!backEnd.failure.empty()) return qCritical("No card service: %s", backEnd.failure.c_str()), 2;
    korvane::installPorts(korvane::qtPorts(backEnd.caFile));
    const std::shared_ptr<void> leaving(nullptr, [](void*) { korvane::uninstallPorts(); });
    if (options.isSet("language") && !korvane::setLanguage(option("language")))
        return qCritical("There are no texts in that language."), 2;
    const auto initialize = [&](bool biometrics) {
        return korvane::initialize(backEnd.key, backEnd.service, korvane::hostIvCallback(backEnd.ivUrl),
                                   biometrics, chosen->colors, chosen->radii, "My watch", watchPicture());
    };
    const bool biometrics = option("biometrics") == "on";
    if (!initialize(biometrics)) return qCritical("The key is not base64."), 2;

    if (options.isSet("journey")) return showJourney(options.value("journey"), option("card"));
    korvane::HostService service(backEnd.hostUrl());
    DemoHost host(service, biometrics, initialize);
    QQmlApplicationEngine engine;
    engine.setInitialProperties({{"host", QVariant::fromValue(&host)}});
    engine.load(QUrl("qrc:/qt-project.org/imports/KorvaneDemo/Main.qml"));
    auto* const window = qobject_cast<QQuickWindow*>(engine.rootObjects().value(0));
    window->resize(width, height);
    // Not before there is something to see: the first request starts a thread and libcurl.
    QObject::connect(
        window, &QQuickWindow::frameSwapped, &host, [&host] { host.reload(); }, Qt::SingleShotConnection);
    window->show();
    if (options.isSet("finger-tour"))
        return playFingerTour(*window, options.value("finger-tour"), options.isSet("next-visit"));
    if (!options.isSet("tour")) return app.exec();
    const QList<QSize> sizes = options.isSet("size") ? QList<QSize>{{width, height}}
                                                     : QList<QSize>{{320, 568}, {390, 844}, {1280, 800}};
    return playTour(*window, service, options.value("tour"), sizes);
}
