// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>
#include <QQuickItem>
#include <QQuickWindow>
#include <functional>

/// A person's eyes and hands on a window, for a script: it looks for controls by name, taps and types, and
/// waits until it sees something. While it waits, events go on.
class Hands {
  public:
    explicit Hands(QQuickWindow& window) : window_(window) {}

    /// The item of that name that a person sees; none when there is none.
    QQuickItem* find(const QString& objectName) const;
    /// True when `seen` came true within `milliseconds`.
    bool waitUntil(const std::function<bool()>& seen, int milliseconds = 10000) const;
    /// Waits until the item is there and can be used.
    bool waitFor(const QString& objectName) const;
    /// Scrolls to the control first. False when there is no such control to tap.
    bool tap(const QString& objectName) const;
    void type(const QString& text) const;
    /// Scrolls what can be scrolled to its end, or back to its beginning. False when all of it is in sight.
    bool scroll(bool toEnd) const;
    /// A picture of the window, taken when nothing moves any more, or after a second.
    QImage look() const;

  private:
    QQuickWindow& window_;
};
