// SPDX-License-Identifier: Apache-2.0
#include <korvane/CloseNotification.h>
#include <korvane/ViewController.h>

#include <QQuickView>
#include <QUrl>

#include "uikit/quick/JourneyModel.h"

namespace korvane {
namespace {

class JourneyWindow : public QQuickView {
  protected:
    /// Whoever closes the window has given up, and the host is waiting to hear of it.
    bool event(QEvent* event) override {
        const bool done = QQuickView::event(event);
        if (event->type() == QEvent::Close && event->isAccepted()) {
            NotificationCenter::defaultCenter().post(NotificationCloseUI, {{"result", "CANCELED"}});
        }
        return done;
    }
};

class QuickViewController final : public ViewController {
  public:
    QuickViewController(const QString& screen, const std::string& cardId) {
        window_->setResizeMode(QQuickView::SizeRootObjectToView);
        window_->setMinimumSize({320, 480});
        window_->setInitialProperties({{QStringLiteral("cardId"), QString::fromStdString(cardId)}});
        window_->setSource(QUrl(QStringLiteral("qrc:/qt-project.org/imports/Korvane/%1.qml").arg(screen)));
    }

    ~QuickViewController() override {
        // At once for the journey, but later for the window: the host may have been called out of one of its
        // events.
        if (auto* const journey = window_->findChild<JourneyModel*>()) journey->stop();
        window_->hide();
        window_->deleteLater();
    }

    void show(int width, int height) override {
        window_->resize(width, height);
        window_->show();
    }

    void hide() override { window_->hide(); }

  private:
    JourneyWindow* const window_ = new JourneyWindow;
};

}  // namespace

std::unique_ptr<ViewController> SetPINFactory::create(const std::string& cardId) {
    return std::make_unique<QuickViewController>(QStringLiteral("SetPIN"), cardId);
}

std::unique_ptr<ViewController> ActivateCardAndSetPINFactory::create(const std::string& cardId) {
    return std::make_unique<QuickViewController>(QStringLiteral("ActivateCardAndSetPIN"), cardId);
}

}  // namespace korvane
