// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QPointer>
#include <QQuickPaintedItem>
#include <QString>

#include "uikit/quick/CardModel.h"
#include "uikit/quick/ItemAccessible.h"
#include "uikit/quick/Theme.h"

namespace korvane {

/// Draws one of the card's values, which no QML property holds. Main thread.
///
/// While a value that is mostly masked stands in clear, the item can be reached with Tab, and its accessible
/// name is the value, digit by digit: whoever does not see the screen asks for it as others look at it.
/// Masked, it can not be reached and tells accessibility nothing.
class CardValue : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(korvane::DetailModel* detail READ detail WRITE setDetail NOTIFY detailChanged REQUIRED)
    /// The text stands at the right, as in a language that is written from there.
    Q_PROPERTY(bool mirrored READ mirrored WRITE setMirrored NOTIFY mirroredChanged)

  public:
    explicit CardValue(QQuickItem* parent = nullptr);

    DetailModel* detail() const { return detail_; }
    void setDetail(DetailModel* detail);
    bool mirrored() const { return mirrored_; }
    void setMirrored(bool mirrored);
    /// For accessibility: "" unless the value is revealed.
    QString spokenDigits() const;

    void paint(QPainter* painter) override;

  signals:
    void detailChanged();
    void mirroredChanged();

  protected:
    void componentComplete() override;
    void geometryChange(const QRectF& now, const QRectF& before) override;

  private:
    void redraw();
    QString words() const;
    QFont font() const;
    int flags() const;

    QPointer<DetailModel> detail_;
    QPointer<Theme> theme_;
    bool mirrored_ = false;
};

/// A text while the value is revealed, nothing before and after.
class CardValueAccessible final : public ItemAccessible {
  public:
    explicit CardValueAccessible(CardValue* item) : ItemAccessible(item) {}

    QAccessible::Role role() const override { return QAccessible::StaticText; }
    QString text(QAccessible::Text kind) const override;
    QAccessible::State state() const override;

  private:
    const CardValue& value() const;
};

}  // namespace korvane
