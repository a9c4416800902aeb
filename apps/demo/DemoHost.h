// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QStandardItemModel>

#include "common/HostService.h"

/// The bank's app around the journey: its cards, the journey that is open, the text message that came.
class DemoHost : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("main() makes it.")
    Q_PROPERTY(QAbstractItemModel* cards READ cards CONSTANT)
    /// "SetPIN", "ActivateCardAndSetPIN", "GetCardImage"; empty: none is open.
    Q_PROPERTY(QString journey MEMBER journey_ NOTIFY changed)
    Q_PROPERTY(QString card MEMBER card_ NOTIFY changed)
    Q_PROPERTY(QString result MEMBER result_ NOTIFY changed)
    Q_PROPERTY(QString sms MEMBER sms_ NOTIFY changed)
    Q_PROPERTY(bool biometrics MEMBER biometrics_ WRITE setBiometrics NOTIFY changed)

  public:
    /// @param initialize sets the component up anew, with biometrics on or off
    DemoHost(korvane::HostService& service, bool biometrics, std::function<void(bool)> initialize)
        : service_(service), biometrics_(biometrics), initialize_(std::move(initialize)) {
        cards_.setItemRoleNames(
            {{Qt::DisplayRole, "name"}, {Qt::UserRole + 1, "cardId"}, {Qt::UserRole + 2, "status"}});
    }
    QAbstractItemModel* cards() { return &cards_; }
    /// Asks for the cards anew.
    void reload() {
        service_.cards([this](const std::vector<korvane::HostCard>& cards) {
            cards_.setRowCount(static_cast<int>(cards.size()));
            for (int row = 0; const auto& card : cards) {
                auto* const item = new QStandardItem(QString::fromStdString(card.name));
                item->setData(QString::fromStdString(card.id), Qt::UserRole + 1);
                item->setData(QString::fromStdString(card.status), Qt::UserRole + 2);
                cards_.setItem(row++, item);
            }
        });
    }
    void setBiometrics(bool biometrics) {
        initialize_(biometrics_ = biometrics);
        emit changed();
    }

    Q_INVOKABLE void open(const QString& journey, const QString& card) {
        phone_ = service_.watchSms(card.toStdString(), [this](const std::string& code) {
            show(journey_, {}, QString::fromStdString(code));
        });
        card_ = card;
        show(journey, {}, {});
    }
    Q_INVOKABLE void close(const QString& result) {
        phone_.reset();
        show({}, result, {});
        reload();
    }
    /// Puts the code from the message where the focus is, as a phone's keyboard offers to.
    Q_INVOKABLE void fillCode() {
        QInputMethodEvent filling;
        filling.setCommitString(sms_);
        if (QObject* const field = QGuiApplication::focusObject())
            QCoreApplication::sendEvent(field, &filling);
        show(journey_, {}, {});
    }

  signals:
    void changed();

  private:
    void show(const QString& journey, const QString& result, const QString& sms) {
        journey_ = journey, result_ = result, sms_ = sms;
        emit changed();
    }
    korvane::HostService& service_;
    bool biometrics_;
    std::function<void(bool)> initialize_;
    std::shared_ptr<void> phone_;
    QStandardItemModel cards_;
    QString journey_, card_, result_, sms_;
};
