// SPDX-License-Identifier: Apache-2.0
#include <korvane/platform/Ports.h>

#include <QGuiApplication>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <algorithm>
#include <chrono>
#include <span>
#include <thread>

#include "fuzz/Bounds.h"
#include "fuzz/Input.h"
#include "platform/Background.h"
#include "platform/qt/QtImageDecoder.h"
#include "tests/support/ScriptedService.h"
#include "uikit/quick/CardFaceItem.h"
#include "uikit/quick/JourneyModel.h"

namespace korvane::fuzz {
namespace {

/// An app with the card viewer in its window, drawn in software without a screen.
class App {
  public:
    App() {
        component_.setData("import Korvane\nGetCardImage { cardId: 'card-1' }", QUrl("fuzz.qml"));
        window_.resize(390, 1400);  // shows the disclosure too
        window_.show();
        ScriptedService service;
        see(service);  // compiles the QML and fills caches, outside the bounds of a run
    }

    /// From the service's answer to one drawn frame; gives the card's face and the message as they were.
    std::pair<bool, QString> see(ScriptedService& service) {
        Ports device = ports();
        device.imageDecoder = std::make_shared<QtImageDecoder>(device.mainQueue);
        installPorts(device);
        service.config.currentPciToken = "pci-token";
        std::unique_ptr<QQuickItem> root(qobject_cast<QQuickItem*>(component_.create()));
        check(root != nullptr, component_.errorString().toStdString());
        root->setParentItem(window_.contentItem());
        root->setSize(window_.size());
        auto* const journey = root->findChild<JourneyModel*>();
        while (!journey->current() || journey->current()->layout() != ScreenModel::Layout::Viewer) {
            const bool worked = service.device.mainQueue->runAll() > 0;
            QCoreApplication::processEvents();
            if (!worked) std::this_thread::sleep_for(std::chrono::microseconds(100));
        }
        check(!window_.grabWindow().isNull(), "a frame is drawn");
        const auto* const face = root->findChild<CardFaceItem*>();
        check(face != nullptr, "the page of the card is drawn");
        const std::pair seen{!face->placeholder(), journey->current()->toast()};
        root.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        engine_.collectGarbage();
        return seen;
    }

  private:
    static QGuiApplication& application() {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("QT_QUICK_BACKEND", "software");
        static int count = 1;
        static char name[] = "fuzz";
        static char* arguments[] = {name, nullptr};
        static auto* const instance = new QGuiApplication(count, arguments);
        return *instance;
    }

    QGuiApplication& application_ = application();
    QQmlEngine engine_;
    QQmlComponent component_{&engine_};
    QQuickWindow window_;
};

/// Made once and never destroyed: Qt's own globals may be gone at exit.
App& app() {
    static auto* const instance = new App;
    return *instance;
}

}  // namespace

/// A card's picture, of the service or of the host, from the answer to the drawn frame.
void picture(Input& input) {
    App& viewer = app();
    ScriptedService service;
    const bool isHosts = input.below(2) == 1;
    const auto bytes = std::as_bytes(std::span{input.bytes});
    const auto base64 = QByteArray(input.bytes.data(), static_cast<qsizetype>(input.bytes.size())).toBase64();
    service.cardDetails["encryptedCardImage"] = isHosts ? "" : base64.toStdString();
    service.cardType = "wearable";
    service.config.wearableImage.reset();
    if (isHosts) service.config.wearableImage = ImageData(bytes.begin(), bytes.end());
    const Bounds bounds;
    const auto [isShown, message] = viewer.see(service);
    check(isShown == message.isEmpty(), "a picture, or why there is none");
}

/// The card's texts: any of them, also long ones, one after the other or all at once.
void texts(Input& input) {
    static constexpr const char* fields[] = {"Pan",        "Cvv",      "ExpiryDate",  "FirstName",
                                             "MiddleName", "LastName", "CardNetwork", "CardDisclosures"};
    App& viewer = app();
    ScriptedService service;
    while (!input.bytes.empty()) {
        const std::size_t which = input.below(std::size(fields) + 1);
        const std::size_t doublings = input.below(24);
        std::string text = input.line();
        for (std::size_t i = 0; i < doublings && text.size() < 500'000; ++i) text += text;
        if (which == std::size(fields)) {
            const QJsonObject item{{"Language", "English"}, {"CardDisclosure", QString::fromStdString(text)}};
            const QJsonObject list{{"CardDisclosures", QJsonArray{item}}};
            text = QJsonDocument(list).toJson(QJsonDocument::Compact).toStdString();
        }
        service.cardDetails[std::string("encrypted") + fields[std::min(which, std::size(fields) - 1)]] = text;
    }
    const Bounds bounds;
    viewer.see(service);
    finishBackgroundWork();
}

}  // namespace korvane::fuzz
