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
/// surrounding text for input methods tells one. Accessibility must ignore this item, because it has the
/// keyboard focus; the item around it speaks for it.
class PasscodeItem : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(korvane::ScreenModel* screen READ screen WRITE setScreen NOTIFY screenChanged REQUIRED)

  public:
    explicit PasscodeItem(QQuickItem* parent = nullptr);

    ScreenModel* screen() const { return screen_; }
    void setScreen(ScreenModel* screen);

    void paint(QPainter* painter) override;
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

  signals:
    void screenChanged();

  protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void componentComplete() override;

  private:
    void redraw();
    void insert(QString text);
    QRectF boxRect(int index, int size) const;

    QPointer<ScreenModel> screen_;
    QPointer<Theme> theme_;
};

}  // namespace korvane
