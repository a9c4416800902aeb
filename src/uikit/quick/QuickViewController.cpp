// SPDX-License-Identifier: Apache-2.0
#include <korvane/ViewController.h>

#include <QQuickView>
#include <QThread>
#include <QUrl>

#include "uikit/quick/JourneyModel.h"

namespace korvane {
namespace {

class JourneyWindow : public QQuickView {
  public:
    /// At once for the journey; for the window later where the host may have been called out of one of its
    /// events.
    void dispose() {
        if (auto* const journey = findChild<JourneyModel*>()) journey->stop();
        hide();
        disposed_ = true;  // an app that ends closes hidden windows too, but this journey is over already
        // Without a loop there is no later: the app is about to end.
        if (eventsUnderWay_ == 0 && QThread::currentThread()->loopLevel() == 0) {
            delete this;
        } else {
            deleteLater();
        }
    }

  protected:
    /// A window that is closed by its frame ends the journey, and the host waits for the result.
    bool event(QEvent* event) override {
        if (event->type() == QEvent::DeferredDelete)
            return QQuickView::event(event);  // this is gone afterwards
        ++eventsUnderWay_;
        const bool done = QQuickView::event(event);
        if (event->type() == QEvent::Close && event->isAccepted() && !disposed_) {
            if (auto* const journey = findChild<JourneyModel*>()) journey->close();
        }
        --eventsUnderWay_;
        return done;
    }

  private:
    int eventsUnderWay_ = 0;
    bool disposed_ = false;
};

class QuickViewController final : public ViewController {
  public:
    QuickViewController(const QString& screen, const std::string& cardId) {
        window_->setResizeMode(QQuickView::SizeRootObjectToView);
        window_->setMinimumSize({320, 480});
        window_->setInitialProperties(
            {{QStringLiteral("cardId"), QString::fromStdString(cardId)}, {QStringLiteral("closable"), true}});
        window_->setSource(QUrl(QStringLiteral("qrc:/qt-project.org/imports/Korvane/%1.qml").arg(screen)));
        nameWindow();
    }

    ~QuickViewController() override { window_->dispose(); }

    void show(int width, int height) override {
        window_->resize(width, height);
        window_->show();
    }

    void hide() override { window_->hide(); }

    JourneyId journeyId() const override {
        const auto* const journey = window_->findChild<JourneyModel*>();
        return journey ? journey->journeyId() : 0;
    }

  private:
    /// The window is called what its page is called, for those who switch between windows (WCAG 2.2, 2.4.2).
    void nameWindow() {
        auto* const journey = window_->findChild<JourneyModel*>();
        if (!journey) return;
        const auto name = [window = window_, journey] {
            if (const QString& title = journey->current()->title(); !title.isEmpty()) window->setTitle(title);
        };
        QObject::connect(journey, &JourneyModel::moved, window_, name);
        for (const ScreenModel* const each : {journey->even(), journey->odd()})
            QObject::connect(each, &ScreenModel::titleChanged, window_, name);
    }

    JourneyWindow* const window_ = new JourneyWindow;
};

}  // namespace

std::unique_ptr<ViewController> SetPINFactory::create(const std::string& cardId) {
    return std::make_unique<QuickViewController>(QStringLiteral("SetPIN"), cardId);
}

std::unique_ptr<ViewController> ActivateCardAndSetPINFactory::create(const std::string& cardId) {
    return std::make_unique<QuickViewController>(QStringLiteral("ActivateCardAndSetPIN"), cardId);
}

std::unique_ptr<ViewController> GetCardImageFactory::create(const std::string& cardId) {
    return std::make_unique<QuickViewController>(QStringLiteral("GetCardImage"), cardId);
}

}  // namespace korvane
