// SPDX-License-Identifier: Apache-2.0
#include "Hands.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QThread>
#include <algorithm>

namespace {

QQuickItem* findBelow(QQuickItem* item, const QString& objectName) {
    if (!item->isVisible() || item->opacity() == 0) return nullptr;
    if (item->objectName() == objectName) return item;
    for (QQuickItem* const child : item->childItems()) {
        if (QQuickItem* const found = findBelow(child, objectName)) return found;
    }
    return nullptr;
}

QQuickItem* scrollable(QQuickItem* item) {
    if (!item->isVisible() || item->opacity() == 0) return nullptr;
    if (item->inherits("QQuickFlickable") && item->property("contentHeight").toReal() > item->height())
        return item;
    for (QQuickItem* const child : item->childItems()) {
        if (QQuickItem* const found = scrollable(child)) return found;
    }
    return nullptr;
}

void bringIntoView(const QQuickItem& item) {
    for (QQuickItem* above = item.parentItem(); above; above = above->parentItem()) {
        if (!above->inherits("QQuickFlickable")) continue;
        const QRectF area = item.mapRectToItem(above, item.boundingRect());
        const double past = area.bottom() - above->height();
        const double by = area.top() < 0 ? area.top() : std::max(0.0, past);
        above->setProperty("contentY", above->property("contentY").toReal() + by);
    }
}

void send(QQuickWindow& window, QEvent&& event) {
    QCoreApplication::sendEvent(&window, &event);
}

}  // namespace

QQuickItem* Hands::find(const QString& objectName) const {
    return findBelow(window_.contentItem(), objectName);
}

bool Hands::waitUntil(const std::function<bool()>& seen, int milliseconds) const {
    const QDeadlineTimer deadline(milliseconds);
    while (!seen()) {
        if (deadline.hasExpired()) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(5);
    }
    return true;
}

bool Hands::waitFor(const QString& objectName) const {
    return waitUntil([&] {
        const QQuickItem* const item = find(objectName);
        return item && item->isEnabled();
    });
}

bool Hands::tap(const QString& objectName) const {
    if (!waitFor(objectName)) return false;
    look();  // a control that still slides would be missed
    QPointF at;
    const bool inSight = waitUntil([&] {  // a list that is filled anew takes its place again
        if (const QQuickItem* const found = find(objectName)) bringIntoView(*found);
        const QQuickItem* const item = find(objectName);
        if (!item || !item->isEnabled()) return false;
        at = item->mapToScene(QPointF(item->width() / 2, item->height() / 2));
        return QRectF(QPointF(), window_.size()).contains(at);
    });
    if (!inSight) return false;
    const QPointF global = window_.mapToGlobal(at);
    send(window_, QMouseEvent(QEvent::MouseButtonPress, at, at, global, Qt::LeftButton, Qt::LeftButton, {}));
    send(window_, QMouseEvent(QEvent::MouseButtonRelease, at, at, global, Qt::LeftButton, Qt::NoButton, {}));
    return true;
}

void Hands::type(const QString& text) const {
    for (const QChar letter : text) {
        const int key = letter == u'\b' ? int(Qt::Key_Backspace) : letter.toUpper().unicode();
        send(window_, QKeyEvent(QEvent::KeyPress, key, Qt::NoModifier, letter));
        send(window_, QKeyEvent(QEvent::KeyRelease, key, Qt::NoModifier, letter));
    }
}

bool Hands::scroll(bool toEnd) const {
    QQuickItem* const item = scrollable(window_.contentItem());
    if (!item) return false;
    const double begin = item->property("originY").toReal() - item->property("topMargin").toReal();
    const double end = item->property("contentHeight").toReal() - item->height();
    item->setProperty("contentY", toEnd ? end : begin);
    return true;
}

QImage Hands::look() const {
    QImage picture = window_.grabWindow();
    waitUntil(
        [&] {
            const QDeadlineTimer pause(80);
            waitUntil([&] { return pause.hasExpired(); });
            return std::exchange(picture, window_.grabWindow()) == picture;
        },
        1000);
    return picture;
}
