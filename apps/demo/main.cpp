// SPDX-License-Identifier: Apache-2.0
#include <korvane/Initialize.h>
#include <korvane/QtPorts.h>

#include <QCommandLineParser>
#include <QQmlApplicationEngine>
#include <QQuickWindow>

#include "DemoHost.h"
#include "Tour.h"
#include "common/BackEnd.h"
#include "common/HostIv.h"

int main(int argc, char** argv) {
    QGuiApplication app(argc, argv);
    QCommandLineParser options;
    options.addHelpOption();
    options.addOptions({{"service", "Card service to use instead of the built-in one.", "URL"},
                        {"key", "Its pre-shared key.", "BASE64"},
                        {"iv-url", "Where the host gets IVs.", "URL"},
                        {"ca", "PEM file of the certificate authorities to trust.", "FILE"},
                        {"size", "Size of the window.", "WxH", "390x844"},
                        {"tour", "Play the journey by itself, with pictures in DIR.", "DIR"}});
    options.process(app);
    const auto option = [&](const char* name) { return options.value(name).toStdString(); };

    const korvane::BackEnd backEnd =
        options.isSet("service")
            ? korvane::BackEnd{option("service"), option("key"), option("iv-url"), option("ca"), {}, {}}
            : korvane::startBackEnd();
    if (!backEnd.failure.empty()) qFatal("No card service: %s", backEnd.failure.c_str());
    korvane::installPorts(korvane::qtPorts(backEnd.caFile));
    const auto ivCallback = korvane::hostIvCallback(backEnd.ivUrl);
    if (!korvane::initialize(backEnd.key, backEnd.service, ivCallback, false, {}, {}))
        qFatal("--key is not base64");

    korvane::HostService service(backEnd.ivUrl.substr(0, backEnd.ivUrl.rfind('/')));
    DemoHost host(service);
    QQmlApplicationEngine engine;
    engine.setInitialProperties({{"host", QVariant::fromValue(&host)}});
    engine.load(QUrl("qrc:/qt-project.org/imports/KorvaneDemo/Main.qml"));
    auto* const window = qobject_cast<QQuickWindow*>(engine.rootObjects().value(0));
    if (!window) return 1;
    const QStringList size = options.value("size").split('x');
    window->resize(size.value(0).toInt(), size.value(1).toInt());
    window->show();
    return options.isSet("tour") ? playTour(*window, service, options.value("tour")) : app.exec();
}
