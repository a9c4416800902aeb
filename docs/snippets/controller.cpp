// SPDX-License-Identifier: Apache-2.0
// A host without QML: a journey in a window of its own. usage: controller SERVICE KEY IV-ID IV CA-FILE
#include <korvane/CloseNotification.h>
#include <korvane/Initialize.h>
#include <korvane/Language.h>
#include <korvane/QtPorts.h>
#include <korvane/ViewController.h>
#include <korvane/platform/RedactingConsole.h>

#include <QGuiApplication>
#include <thread>

/// Two journeys in windows of their own, at once.
[[maybe_unused]] static int showTwo() {
    // [two]
    auto left = korvane::SetPINFactory::create("card-physical-active");
    auto right = korvane::GetCardImageFactory::create("card-virtual-active");
    const auto either = korvane::NotificationCenter::defaultCenter().observe(
        korvane::NotificationCloseUI,
        [&, first = left->journeyId()](const korvane::NotificationUserInfo&, korvane::JourneyId journey) {
            (journey == first ? left : right).reset();
        });
    // [/two]
    left->show();
    right->show();
    return QGuiApplication::exec();
}

int main(int argc, char** argv) {
    QGuiApplication app(argc, argv);
    const QStringList given = app.arguments();
    if (given.size() != 6) return 2;
    const std::string service = given[1].toStdString(), key = given[2].toStdString(),
                      caFile = given[5].toStdString();

    // [ports]
    korvane::Ports ports = korvane::qtPorts(caFile);
    ports.console = std::make_shared<korvane::RedactingConsole>(ports.console);
    if (!korvane::installPorts(ports)) return 1;
    // [/ports]

    // [iv]
    // Stands for a question to the bank's own server, on a thread of the host's own.
    const auto ivCallback = [id = given[3].toStdString(), iv = given[4].toStdString()](
                                korvane::IvReply reply) { std::thread([=] { reply(id, iv); }).detach(); };
    // [/iv]

    // [look]
    korvane::KorvaneColors colors;  // or KorvaneColors::dark()
    colors.primary = korvane::Color::rgb8(20, 60, 160);
    korvane::KorvaneCornerRadii radii;
    radii.buttonCorner = korvane::eKorvaneCornerRadius::minor;
    // [/look]

    // [initialize]
    const bool useBiometrics = false;
    if (!korvane::initialize(key, service, ivCallback, useBiometrics, colors, radii)) return 1;
    // [/initialize]

    // [texts]
    korvane::setLanguage("fr-CH");  // at once: titles, messages, toasts, accessible names, direction
    korvane::overrideText("sdk.success.setpin.button", "À bientôt", "fr");           // in one language
    korvane::overrideText("sdk.errorPage.contactSupport.header", "Call 0800 1234");  // in every language
    // [/texts]

    // [show]
    auto journey = korvane::SetPINFactory::create("card-physical-active");
    const auto closed = korvane::NotificationCenter::defaultCenter().observe(
        korvane::NotificationCloseUI, [&](const korvane::NotificationUserInfo& info) {
            const std::string& result = info.at("result");  // "SUCCESS", "CANCELED" or "FAILURE"
            journey.reset();                                // takes the window away
            QGuiApplication::exit(result == "SUCCESS" ? 0 : 1);
        });
    journey->show();
    // [/show]

    const int status = app.exec();
    // [end]
    journey.reset();
    korvane::uninstallPorts();
    // [/end]
    return status;
}
