// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QAccessible>
#include <QObject>

namespace korvane {

/// How a person uses the screens: by touch or pointer, by keys, or through assistive technology. One per QML
/// engine; main thread.
class InputMode : public QObject, private QAccessible::ActivationObserver {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    /// The control that has the focus must show it (WCAG 2.2, 2.4.7): until a pointer is used, and from the
    /// next key on.
    Q_PROPERTY(bool focusShown READ focusShown NOTIFY changed)

  public:
    explicit InputMode(QObject* parent = nullptr);
    ~InputMode() override;

    bool focusShown() const { return keys_ || QAccessible::isActive(); }
    /// A new page gives the focus to its title, so that a screen reader reads it from the top; with nobody to
    /// read it, to what the person does next.
    Q_INVOKABLE bool titleFirst() const { return QAccessible::isActive(); }

  signals:
    void changed();

  protected:
    bool eventFilter(QObject* target, QEvent* event) override;

  private:
    void accessibilityActiveChanged(bool active) override;

    bool keys_ = true;
};

}  // namespace korvane
