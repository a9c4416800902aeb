// SPDX-License-Identifier: Apache-2.0
#include "uikit/quick/QuickBiometricPrompt.h"

#include <QGuiApplication>
#include <QPointer>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTimer>
#include <algorithm>
#include <utility>

#include "uikit/quick/BiometricSheetModel.h"
#include "uikit/quick/JourneyModel.h"
#include "uikit/quick/Theme.h"

namespace korvane {
namespace {

bool showsJourney(const QQuickItem* item) {
    const auto* const journey = item->findChild<JourneyModel*>({}, Qt::FindDirectChildrenOnly);
    if (journey && journey->visible()) return true;
    const auto children = item->childItems();
    return std::any_of(children.begin(), children.end(),
                       [](const QQuickItem* child) { return child->isVisible() && showsJourney(child); });
}

QQmlEngine* engineOf(const QQuickItem* item) {
    if (QQmlEngine* const engine = qmlEngine(item)) return engine;
    for (const QQuickItem* const child : item->childItems()) {
        if (QQmlEngine* const engine = engineOf(child)) return engine;
    }
    return nullptr;
}

/// The engine of what the window shows; for a window without QML, one of its own, which goes with it.
QQmlEngine* engineFor(QQuickWindow& window) {
    if (QQmlEngine* const engine = engineOf(window.contentItem())) return engine;
    if (auto* const engine = window.findChild<QQmlEngine*>({}, Qt::FindDirectChildrenOnly)) return engine;
    return new QQmlEngine(&window);
}

/// The app's window for a sheet; none when there is none to be seen.
QQuickWindow* windowForSheet() {
    const auto rank = [](const QQuickWindow& window) {
        return 2 * showsJourney(window.contentItem()) + (&window == QGuiApplication::focusWindow());
    };
    QWindow* const modal = QGuiApplication::modalWindow();  // the others take no input
    QQuickWindow* best = nullptr;
    for (QWindow* const each : QGuiApplication::topLevelWindows()) {
        auto* const window = qobject_cast<QQuickWindow*>(each);
        if (!window || !window->isVisible() || (modal && modal != window)) continue;
        if (window->type() != Qt::Window && window->type() != Qt::Dialog) continue;
        if (!best || rank(*window) > rank(*best)) best = window;
    }
    return best;
}

/// One sheet, from the asking to the release of its handle.
class Shown final : public QObject {
  public:
    Shown(const std::string& reason, BiometricPrompt::Callbacks callbacks)
        : callbacks_(std::move(callbacks)),
          model_(std::make_unique<BiometricSheetModel>(reason, [this] { cancel(); })) {
        connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, &Shown::look);
        connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, &Shown::look);
        connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, &Shown::placeSoon);
        placeSoon();
        QTimer::singleShot(1000, this, [this] {
            mayOpenWindow_ = true;
            place();
        });
    }

    ~Shown() override {
        if (qGuiApp) qGuiApp->disconnect(this);
        const QPointer<QQuickItem> item = item_;
        takeOff();
        if (item) {
            model_->setOpen(false);
            model_.release()->setParent(item);
            QTimer::singleShot(Theme::of(item)->moveDuration(), item, &QObject::deleteLater);
        }
        if (ownWindow_) {
            ownWindow_->hide();
            ownWindow_->deleteLater();
        }
    }

    void tell(std::string_view messageId) { model_->tell(messageId); }

    bool eventFilter(QObject* watched, QEvent* event) override {
        switch (event->type()) {
            case QEvent::Expose:
            case QEvent::WindowBlocked:
            case QEvent::WindowUnblocked:
                look();
                break;
            case QEvent::Close:
                if (watched == ownWindow_) cancel();
                break;
            default:
                break;
        }
        return false;
    }

  private:
    void placeSoon() { QMetaObject::invokeMethod(this, &Shown::place, Qt::QueuedConnection); }

    void place() {
        if (item_ && window_->isVisible()) return;
        QQuickWindow* window = windowForSheet();
        if (!window && (item_ || !mayOpenWindow_)) return;
        if (!window) window = makeOwnWindow();
        const QPointer<QQuickItem> old = item_;
        takeOff();
        delete old;
        putOn(*window);
    }

    QQuickWindow* makeOwnWindow() {
        ownWindow_ = new QQuickWindow;
        ownWindow_->setTitle(QGuiApplication::applicationDisplayName());
        ownWindow_->setTransientParent(QGuiApplication::focusWindow());
        ownWindow_->setModality(Qt::ApplicationModal);
        ownWindow_->setFlags(Qt::Dialog);
        ownWindow_->resize(360, 380);
        return ownWindow_;
    }

    void putOn(QQuickWindow& window) {
        QQuickItem* const content = window.contentItem();
        QQmlComponent component(engineFor(window),
                                QUrl("qrc:/qt-project.org/imports/Korvane/BiometricSheet.qml"));
        item_ = qobject_cast<QQuickItem*>(component.createWithInitialProperties(
            {{"sheet", QVariant::fromValue(model_.get())}, {"alone", &window == ownWindow_}}));
        if (!item_) {
            qCritical("No sheet for the biometric check: %s", qPrintable(component.errorString()));
            cancel();
            return;
        }
        window_ = &window;
        before_ = content->scopedFocusItem();
        item_->setParent(content);
        item_->setParentItem(content);
        connect(item_, &QObject::destroyed, this, &Shown::look);
        connect(item_, &QObject::destroyed, this, &Shown::placeSoon);  // its window went
        connect(window_, &QQuickWindow::activeFocusItemChanged, this, &Shown::keepFocus);
        connect(window_, &QWindow::visibilityChanged, this, &Shown::look);
        window_->installEventFilter(this);
        model_->setOpen(true);
        item_->forceActiveFocus(Qt::OtherFocusReason);
        if (window_ == ownWindow_) ownWindow_->show();
        look();
    }

    /// Lets go of the window, and of the item on it.
    void takeOff() {
        if (window_) {
            window_->removeEventFilter(this);
            window_->disconnect(this);
        }
        if (item_) item_->disconnect(this);
        if (before_) before_->forceActiveFocus(Qt::OtherFocusReason);
        item_ = nullptr;
        window_ = nullptr;
    }

    /// Keys go to the sheet alone; what asks for them meanwhile gets them afterwards.
    void keepFocus() {
        QQuickItem* const wanted = window_->contentItem()->scopedFocusItem();
        if (wanted == item_) return;
        before_ = wanted;
        const auto takeBack = [this] {
            if (item_) item_->forceActiveFocus(Qt::OtherFocusReason);
        };
        QMetaObject::invokeMethod(this, takeBack, Qt::QueuedConnection);
    }

    bool inSight() const {
        const QWindow* const modal = QGuiApplication::modalWindow();
        return item_ && window_->isExposed() && window_->visibility() != QWindow::Minimized &&
               (!modal || modal == window_) && QGuiApplication::applicationState() == Qt::ApplicationActive;
    }

    void look() {
        const bool now = inSight();
        if (std::exchange(seen_, now) == now) return;
        model_->setArmed(now);
        callbacks_.visibilityChanged(now);
    }

    void cancel() {
        if (const auto cancelled = std::exchange(callbacks_.cancelled, nullptr)) cancelled();
    }

    BiometricPrompt::Callbacks callbacks_;
    std::unique_ptr<BiometricSheetModel> model_;  // the item's, once this is gone
    QPointer<QQuickWindow> ownWindow_;
    QPointer<QQuickWindow> window_;
    QPointer<QQuickItem> item_;
    QPointer<QQuickItem> before_;  // had the keys before the sheet, or asked for them since
    bool mayOpenWindow_ = false;
    bool seen_ = false;
};

}  // namespace

std::unique_ptr<BiometricPrompt::Handle> QuickBiometricPrompt::show(const std::string& reason,
                                                                    Callbacks callbacks) {
    class ShownHandle final : public Handle {
      public:
        ShownHandle(const std::string& reason, Callbacks callbacks) : shown_(reason, std::move(callbacks)) {}
        void tell(std::string_view messageId) override { shown_.tell(messageId); }

      private:
        Shown shown_;
    };
    return std::make_unique<ShownHandle>(reason, std::move(callbacks));
}

}  // namespace korvane
