// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Journey.h>

#include <QtQml/qqmlregistration.h>
#include <QImage>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

#include "uikit/quick/ControlModel.h"

namespace korvane {

/// The card as it is pictured. It belongs to its `ScreenModel`; main thread.
class CardModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Screens make their cards.")

    Q_PROPERTY(QString name READ name NOTIFY changed)
    /// The name and what is drawn on the card, for people who do not see it.
    Q_PROPERTY(QString description READ description NOTIFY changed)
    /// Asset name; empty: none.
    Q_PROPERTY(QString networkLogo READ networkLogo NOTIFY changed)
    Q_PROPERTY(bool frozen READ frozen NOTIFY changed)
    /// What stands over the card: a message, its header first, or a button.
    Q_PROPERTY(QList<QString> message READ message NOTIFY changed)
    Q_PROPERTY(korvane::ControlModel* button READ button NOTIFY changed)

  public:
    explicit CardModel(QObject* parent) : QObject(parent) {}

    QString name() const;
    QString description() const;
    QString networkLogo() const { return QString::fromStdString(face_.networkLogo); }
    bool frozen() const { return face_.frozen; }
    QList<QString> message() const;
    ControlModel* button() const { return button_; }

    /// The picture as `QtImageDecoder` read it, else null: nothing is decoded here, on the main thread.
    QImage picture() const;

    void update(const CardFace& face, ControlModel* button);

  signals:
    void changed();

  private:
    CardFace face_;
    QPointer<ControlModel> button_;
};

/// A line of the card's details. It belongs to its `ScreenModel`; main thread.
///
/// No property tells a number that stands behind a mask: `CardValue` draws it and asks in C++.
class DetailModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Screens make their lists.")

    /// Copies the value.
    Q_PROPERTY(korvane::ControlModel* control READ control NOTIFY changed)
    /// The value, for people who do not see it; of one behind a mask whether it is shown.
    Q_PROPERTY(QString spokenValue READ spokenValue NOTIFY changed)
    Q_PROPERTY(bool copyable READ copyable NOTIFY changed)

  public:
    DetailModel(const DetailRow& row, ControlModel* control, QObject* parent);
    ~DetailModel() override;

    ControlModel* control() const { return control_; }
    QString spokenValue() const;
    bool copyable() const { return row_.copyable; }

    const std::string& id() const { return row_.id; }
    /// What is drawn: the value, its mask, or "" when there is none.
    const std::string& value() const { return row_.value; }
    /// A value that is mostly masked stands in clear.
    bool revealed() const { return row_.secret && !row_.masked && !row_.value.empty(); }
    bool masked() const { return row_.masked; }

    void update(const DetailRow& row, ControlModel* control);
    /// Forgets a value that stands in clear and is mostly masked.
    void forgetSecret();

  signals:
    void changed();

  private:
    DetailRow row_;
    QPointer<ControlModel> control_;
};

}  // namespace korvane
