// SPDX-License-Identifier: Apache-2.0
// A host app for the tests of accessibility: one journey in a window, or one plain password field.
#include <korvane/CloseNotification.h>
#include <korvane/Initialize.h>
#include <korvane/QtPorts.h>
#include <korvane/ViewController.h>

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickView>
#include <cstdio>

#include "common/HostIv.h"

namespace {

std::unique_ptr<korvane::ViewController> journey(const QString& kind, const std::string& card) {
    if (kind == "card") return korvane::GetCardImageFactory::create(card);
    if (kind == "activate") return korvane::ActivateCardAndSetPINFactory::create(card);
    return korvane::SetPINFactory::create(card);
}

}  // namespace

int main(int argc, char** argv) {
    QGuiApplication app(argc, argv);
    QCommandLineParser options;
    for (const char* const name : {"journey", "card", "service", "key", "iv-url", "ca", "field"})
        options.addOption({name, {}, "VALUE"});
    options.process(app);
    const auto option = [&](const char* name) { return options.value(name).toStdString(); };

    if (options.isSet("field")) {
        QQuickView view(QUrl::fromLocalFile(options.value("field")));
        view.show();
        return app.exec();
    }

    korvane::installPorts(korvane::qtPorts(option("ca")));
    korvane::initialize(option("key"), option("service"), korvane::hostIvCallback(option("iv-url")), false,
                        {}, {});
    auto controller = journey(options.value("journey"), option("card"));
    const auto closing = korvane::NotificationCenter::defaultCenter().observe(
        korvane::NotificationCloseUI, [&](const korvane::NotificationUserInfo& info) {
            std::fprintf(stderr, "closed %s\n", info.at("result").c_str());
            controller.reset();
            app.quit();
        });
    controller->show();
    const int status = app.exec();
    korvane::uninstallPorts();
    return status;
}
