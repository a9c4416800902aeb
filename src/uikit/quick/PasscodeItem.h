// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QPointer>
#include <QQuickPaintedItem>
#include <QString>

#include "uikit/quick/ScreenModel.h"
#include "uikit/quick/Theme.h"

namespace korvane {

/// A screen's digit boxes: it draws them and takes the keys, as one field. Main thread.
///
/// Digits go from the event to the journey and are kept nowhere here: no property, no accessible text and no
/// surrounding text for input methods tells one. Nor do keys: Qt's bridge to assistive technology passes
/// every key of the app on to a bus, with its text, so this item takes the digits before the bridge sees
/// them.
class PasscodeItem : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(korvane::ScreenModel* screen READ screen WRITE setScreen NOTIFY screenChanged REQUIRED)
    /// Digits typed while the focus is anywhere in this item are for the boxes too: the whole page.
    Q_PROPERTY(QQuickItem* page MEMBER page_ NOTIFY pageChanged)

  public:
    explicit PasscodeItem(QQuickItem* parent = nullptr);

    ScreenModel* screen() const { return screen_; }
    void setScreen(ScreenModel* screen);

    /// Types or pastes. Digits of any script count, with blanks and dashes between them; a text with anything
    /// else in it changes nothing, and neither does any while no input is taken.
    void enter(QString text);
    /// Empties all boxes.
    void erase();
    /// False while a call is under way.
    bool takesInput() const;

    void paint(QPainter* painter) override;
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

  signals:
    void screenChanged();
    void pageChanged();

  protected:
    bool eventFilter(QObject* target, QEvent* event) override;
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void componentComplete() override;

  private:
    void redraw();
    bool isForBoxes(const QKeyEvent& event) const;
    QRectF boxRect(int index, int size) const;

    QPointer<ScreenModel> screen_;
    QPointer<Theme> theme_;
    QPointer<QQuickItem> page_;
};

}  // namespace korvane
