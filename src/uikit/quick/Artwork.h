// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QColor>
#include <QPointer>
#include <QQuickPaintedItem>
#include <QString>

#include "uikit/quick/Theme.h"

namespace korvane {

/// Draws a picture or a symbol by its asset name, sharp at every size and in the theme's colours. A name that
/// is no asset's draws nothing. It takes no input and says nothing to accessibility.
///
/// Pictures: "caption_exclamation", "success", "cards_activate", "sms", "fingerprint". Symbols, drawn in
/// `color`: "info.circle", "checkmark.circle", "xmark.octagon", "exclamationmark.circle", "back", "xmark",
/// "spinner", "eye", "eye.slash", "doc.on.doc", "snowflake", "contactless_icon", "mastercard_logo".
class Artwork : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
    /// Degrees that the symbol is turned clockwise. It is drawn turned, which stays sharp where a turned
    /// picture of it would not.
    Q_PROPERTY(double angle READ angle WRITE setAngle NOTIFY angleChanged)

  public:
    explicit Artwork(QQuickItem* parent = nullptr);

    QString name() const { return name_; }
    void setName(const QString& name);
    QColor color() const { return color_; }
    void setColor(const QColor& color);

    double angle() const { return angle_; }
    void setAngle(double angle);

    void paint(QPainter* painter) override;

  signals:
    void nameChanged();
    void colorChanged();
    void angleChanged();

  protected:
    void componentComplete() override;

  private:
    void redraw() { update(); }

    QString name_;
    QColor color_ = Qt::black;
    double angle_ = 0;
    QPointer<Theme> theme_;
};

}  // namespace korvane
