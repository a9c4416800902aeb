// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/QtMainQueue.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <utility>

#include "platform/WorkQueue.h"

namespace korvane {

/// Runs one piece of work an event: Qt keeps the events in order, and drops them with the receiver.
class QtMainQueue::Receiver final : public QObject {
  public:
    static QEvent::Type type() {
        static const auto registered = static_cast<QEvent::Type>(QEvent::registerEventType());
        return registered;
    }

    bool event(QEvent* event) override {
        if (event->type() != type()) return QObject::event(event);
        if (const auto piece = work.take()) piece();  // may destroy this object
        return true;
    }

    WorkQueue work;
};

QtMainQueue::QtMainQueue() : receiver_(std::make_unique<Receiver>()) {}
QtMainQueue::~QtMainQueue() = default;

void QtMainQueue::post(std::function<void()> work) {
    receiver_->work.push(std::move(work));
    QCoreApplication::postEvent(receiver_.get(), new QEvent(Receiver::type()));
}

}  // namespace korvane
