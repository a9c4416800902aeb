// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QStandardItemModel>

#include "common/HostService.h"

/// The bank's app around the journey: its cards, the card whose journey is open, the text message that came.
class DemoHost : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("main() makes it.")
    Q_PROPERTY(QAbstractItemModel* cards READ cards CONSTANT)
    Q_PROPERTY(QString openCard MEMBER openCard_ NOTIFY changed)
    Q_PROPERTY(QString result MEMBER result_ NOTIFY changed)
    Q_PROPERTY(QString sms MEMBER sms_ NOTIFY changed)

  public:
    explicit DemoHost(korvane::HostService& service) : service_(service) {
        cards_.setItemRoleNames({{0, "name"}, {1, "cardId"}, {2, "status"}});
        service_.cards([this](const std::vector<korvane::HostCard>& cards) {
            for (const auto& card : cards) {
                auto* const row = new QStandardItem(QString::fromStdString(card.name));
                row->setData(QString::fromStdString(card.id), 1);
                row->setData(QString::fromStdString(card.status), 2);
                cards_.appendRow(row);
            }
        });
    }

    QAbstractItemModel* cards() { return &cards_; }

    Q_INVOKABLE void open(const QString& cardId) {
        openCard_ = cardId;
        phone_ = service_.watchSms(cardId.toStdString(), [this](const std::string& code) {
            sms_ = QString::fromStdString(code);
            emit changed();
        });
        emit changed();
    }

    Q_INVOKABLE void close(const QString& result) {
        phone_.reset();
        result_ = result;
        sms_.clear(), openCard_.clear();
        emit changed();
    }

    /// Puts the code from the message where the focus is, as a phone's keyboard offers to.
    Q_INVOKABLE void fillCode() {
        QInputMethodEvent filling;
        filling.setCommitString(std::exchange(sms_, QString()));
        if (QObject* const field = QGuiApplication::focusObject())
            QCoreApplication::sendEvent(field, &filling);
        emit changed();
    }

  signals:
    void changed();

  private:
    korvane::HostService& service_;
    std::shared_ptr<void> phone_;
    QStandardItemModel cards_;
    QString openCard_, result_, sms_;
};
