// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/QtMainQueue.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <atomic>
#include <utility>

#include "platform/WorkQueue.h"

namespace korvane {

/// Runs one piece of work an event.
class QtMainQueue::Receiver final : public QObject {
  public:
    void post(std::function<void()> piece) {
        work_.push(std::move(piece));
        wake();
    }

    bool event(QEvent* event) override {
        if (event->type() != type()) return QObject::event(event);
        woken_ = false;
        const auto piece = work_.take();
        // The next event comes before the piece runs: a nested loop inside it would not look again at events
        // that were posted before, and wait in vain.
        if (work_.size() > 0) wake();
        if (piece) piece();  // may destroy this object
        return true;
    }

  private:
    static QEvent::Type type() {
        static const auto registered = static_cast<QEvent::Type>(QEvent::registerEventType());
        return registered;
    }

    void wake() {
        if (!woken_.exchange(true)) QCoreApplication::postEvent(this, new QEvent(type()));
    }

    WorkQueue work_;
    std::atomic<bool> woken_ = false;  // an event is on its way
};

QtMainQueue::QtMainQueue() : receiver_(std::make_unique<Receiver>()) {}
QtMainQueue::~QtMainQueue() = default;

void QtMainQueue::post(std::function<void()> work) {
    receiver_->post(std::move(work));
}

}  // namespace korvane
