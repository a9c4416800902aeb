// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QColor>
#include <QImage>
#include <QPointer>
#include <QQuickPaintedItem>

#include "uikit/quick/CardModel.h"
#include "uikit/quick/Theme.h"

namespace korvane {

/// The card's picture in the proportions of ID-1 (ISO/IEC 7810: 85.60 by 53.98 mm), its corners rounded. The
/// picture covers the card undistorted and is fitted to the screen's own pixels; without one a card is drawn
/// in the host's colours. A frozen card has lost its colours. Main thread.
class CardFaceItem : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(korvane::CardModel* card READ card WRITE setCard NOTIFY cardChanged REQUIRED)
    Q_PROPERTY(double radius READ radius NOTIFY drawn)
    /// What can be seen on the picture's upper and lower right part: black or white.
    Q_PROPERTY(QColor upperInk READ upperInk NOTIFY drawn)
    Q_PROPERTY(QColor lowerInk READ lowerInk NOTIFY drawn)
    /// A picture stands in for the one that there is not.
    Q_PROPERTY(bool placeholder READ placeholder NOTIFY drawn)

  public:
    explicit CardFaceItem(QQuickItem* parent = nullptr);

    CardModel* card() const { return card_; }
    void setCard(CardModel* card);
    double radius() const;
    QColor upperInk() const { return upperInk_; }
    QColor lowerInk() const { return lowerInk_; }
    bool placeholder() const { return picture_.isNull(); }

    void paint(QPainter* painter) override;

  signals:
    void cardChanged();
    void drawn();

  protected:
    void componentComplete() override;
    void geometryChange(const QRectF& now, const QRectF& before) override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;
    void updatePolish() override;

  private:
    void readCard();
    QImage placeholderFace(QSize size) const;

    QPointer<CardModel> card_;
    QPointer<Theme> theme_;
    QImage picture_;  // as it came; null: there is none
    QImage face_;     // in the screen's own pixels
    QColor upperInk_ = Qt::white;
    QColor lowerInk_ = Qt::white;
};

}  // namespace korvane
