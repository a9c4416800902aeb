// SPDX-License-Identifier: Apache-2.0
// korvane-bench-frame ROUND: how long after an answer has come in the first frame of the next screen is
// drawn, for the moves of this process's first journeys: the types of each page are loaded for the first
// time. Offscreen and in software. Prints one JSON object a move, in milliseconds.
#include <korvane/QtPorts.h>

#include <QGuiApplication>
#include <QQuickView>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>

#include "apps/demo/Hands.h"
#include "benchmarks/support/CannedService.h"
#include "benchmarks/support/DelayingProxy.h"
#include "benchmarks/support/Fatal.h"
#include "benchmarks/support/Samples.h"
#include "platform/linux/StdoutConsole.h"
#include "sdk/SdkConfig.h"
#include "uikit/quick/JourneyModel.h"

namespace korvane::bench {
namespace {

using Clock = std::chrono::steady_clock;

/// The app's session, with a note of when the last answer was there.
class NotingSession final : public UrlSession {
  public:
    explicit NotingSession(std::shared_ptr<UrlSession> session) : session_(std::move(session)) {}

    std::unique_ptr<UrlTask> start(UrlRequest request, std::function<void(UrlReply)> reply) override {
        return session_->start(std::move(request), [this, reply = std::move(reply)](UrlReply answer) {
            answered = Clock::now();
            reply(std::move(answer));
        });
    }

    std::atomic<Clock::time_point> answered{};

  private:
    std::shared_ptr<UrlSession> session_;
};

class Journeys {
  public:
    Journeys(NotingSession& session, int round) : session_(session), round_(round) {}

    void setPin() {
        open("SetPIN");
        QQuickView& window = *window_;
        const Hands hands(window);
        measure("EnterCardPINView", [] {});
        for (const char* const button : {"sdk.setpin.button", "sdk.confirmpin.button"}) {
            hands.look();
            hands.type("7391");
            require(hands.waitFor(button), "no button");
            if (button == std::string("sdk.confirmpin.button")) break;
            require(hands.tap(button), "cannot tap");
            require(hands.waitFor("ConfirmCardPINView"), "no second entry");
        }
        measure("SuccessPinSetView", [&hands] { hands.tap("sdk.confirmpin.button"); });
    }

    void viewCard() {
        open("GetCardImage");
        measure("CardImage_NoNav", [] {});
    }

  private:
    void open(const char* journey) {
        window_.emplace();
        window_->setInitialProperties({{"cardId", "card-1"}});
        window_->setSource(QUrl(QString("qrc:/qt-project.org/imports/Korvane/%1.qml").arg(journey)));
        window_->setResizeMode(QQuickView::SizeRootObjectToView);
        window_->resize(390, 844);
        window_->show();
        model_ = window_->findChild<JourneyModel*>();
        require(model_ != nullptr, "no journey");
        QObject::connect(model_, &JourneyModel::moved, &*window_, [this] { moved_ = true; });
        QObject::connect(&*window_, &QQuickWindow::frameSwapped, &*window_, [this] {
            if (moved_ && !drawn_ && model_->current()->view() == awaited_) drawn_ = Clock::now();
        });
    }

    template <class Act>
    void measure(const QString& view, Act act) {
        awaited_ = view;
        moved_ = false;
        drawn_.reset();
        act();
        const Hands hands(*window_);
        require(hands.waitUntil([this] { return drawn_.has_value(); }), view.toStdString() + " did not come");
        const std::chrono::duration<double, std::milli> time = *drawn_ - session_.answered.load();
        printSample("first_frame/" + view.toStdString(), round_, {{"ms", time.count()}});
    }

    NotingSession& session_;
    const int round_;
    std::optional<QQuickView> window_;
    JourneyModel* model_ = nullptr;
    QString awaited_;
    bool moved_ = false;
    std::optional<Clock::time_point> drawn_;
};

void measure(int round) {
    CannedService service(false);
    const DelayingProxy proxy(service.server().port(), std::chrono::milliseconds(40));
    Ports device = qtPorts();
    const auto session = std::make_shared<NotingSession>(device.urlSession);
    device.urlSession = session;
    device.console = std::make_shared<StdoutConsole>(std::fopen("/dev/null", "w"));
    require(installPorts(device), "a port is missing");
    CannedService::initialize(service.server().urlAt(proxy.port()));
    SdkConfig::sharedInstance().currentPciToken = "pci-token";
    {
        Journeys journeys(*session, round);
        journeys.setPin();
        journeys.viewCard();
    }
    uninstallPorts();
}

}  // namespace
}  // namespace korvane::bench

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    const QGuiApplication app(argc, argv);
    korvane::bench::measure(argc > 1 ? std::atoi(argv[1]) : 0);
}
