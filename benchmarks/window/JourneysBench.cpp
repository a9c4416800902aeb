// SPDX-License-Identifier: Apache-2.0
// korvane-bench-journeys COUNT: journeys of all kinds one after another in one process, by turns without a
// window to their end and in one up to their first page, over TLS. Prints the process's memory after the
// tenth and after the last, in KiB.
#include <korvane/Journey.h>
#include <korvane/QtPorts.h>
#include <korvane/ViewController.h>

#include <QEventLoop>
#include <QGuiApplication>
#include <QQuickWindow>
#include <cstdio>
#include <cstdlib>
#include <functional>

#include "benchmarks/support/CannedService.h"
#include "benchmarks/support/Fatal.h"
#include "benchmarks/support/Memory.h"
#include "benchmarks/support/Samples.h"
#include "platform/linux/StdoutConsole.h"
#include "sdk/SdkConfig.h"
#include "uikit/quick/JourneyModel.h"

namespace korvane::bench {
namespace {

constexpr int early = 10;

void waitUntil(const std::function<bool()>& condition) {
    for (int turn = 0; !condition(); ++turn) {
        require(turn < 100'000, "a journey does not go on");
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

void setPinWithoutWindow() {
    Journey journey(JourneyKind::setPIN, "card-1");
    journey.onChange([] {});
    journey.appear();
    const auto comes = [&journey](const char* view) {
        waitUntil([&] { return journey.screen().view == view; });
    };
    comes("EnterCardPINView");
    journey.insertText("7391");
    journey.perform("sdk.setpin.button");
    comes("ConfirmCardPINView");
    journey.insertText("7391");
    journey.perform("sdk.confirmpin.button");
    comes("SuccessPinSetView");
}

void viewCardWithoutWindow() {
    Journey journey(JourneyKind::getCardImage, "card-1");
    journey.appear();
    waitUntil([&journey] { return journey.screen().view == "CardImage_NoNav" && !journey.screen().spinner; });
}

template <class Factory>
void inWindow() {
    const auto controller = Factory::create("card-1");
    controller->show();
    auto* const window = qobject_cast<QQuickWindow*>(QGuiApplication::topLevelWindows().value(0));
    auto* const journey = window ? window->findChild<JourneyModel*>() : nullptr;
    require(journey != nullptr, "no window");
    bool drawn = false;
    QObject::connect(window, &QQuickWindow::frameSwapped, window, [&drawn, journey] {
        drawn = journey->current()->layout() != ScreenModel::Layout::Waiting;
    });
    waitUntil([&drawn] { return drawn; });
}

void measure(int count) {
    CannedService service(true);
    Ports device = qtPorts(service.server().caFile());
    device.console = std::make_shared<StdoutConsole>(std::fopen("/dev/null", "w"));
    require(installPorts(device), "a port is missing");
    CannedService::initialize(service.server().url());
    SdkConfig::sharedInstance().currentPciToken = "pci-token";
    void (*const journeys[])() = {setPinWithoutWindow, inWindow<SetPINFactory>, viewCardWithoutWindow,
                                  inWindow<GetCardImageFactory>, inWindow<ActivateCardAndSetPINFactory>};
    for (int done = 1; done <= count; ++done) {
        journeys[static_cast<std::size_t>(done) % std::size(journeys)]();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        if (done == early || done == count)
            printSample(done == early ? "journeys_memory/early" : "journeys_memory/late", 0,
                        {{"kib", static_cast<double>(memoryKib("Rss:"))}});
    }
    uninstallPorts();
}

}  // namespace
}  // namespace korvane::bench

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    QGuiApplication app(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    korvane::bench::measure(argc > 1 ? std::atoi(argv[1]) : 1000);
}
