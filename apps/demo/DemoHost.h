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
        cards_.setItemRoleNames({{Qt::DisplayRole, "name"}, {Qt::UserRole + 1, "cardId"}});
        service_.cards([this](const std::vector<korvane::HostCard>& cards) {
            for (const auto& card : cards) {
                auto* const row = new QStandardItem(QString::fromStdString(card.name + "\n" + card.status));
                row->setData(QString::fromStdString(card.id));
                cards_.appendRow(row);
            }
        });
    }
    QAbstractItemModel* cards() { return &cards_; }

    Q_INVOKABLE void open(const QString& cardId) {
        phone_ = service_.watchSms(cardId.toStdString(), [this](const std::string& code) {
            show(openCard_, {}, QString::fromStdString(code));
        });
        show(cardId, {}, {});
    }
    Q_INVOKABLE void close(const QString& result) {
        phone_.reset();
        show({}, result, {});
    }
    /// Puts the code from the message where the focus is, as a phone's keyboard offers to.
    Q_INVOKABLE void fillCode() {
        QInputMethodEvent filling;
        filling.setCommitString(sms_);
        if (QObject* const field = QGuiApplication::focusObject())
            QCoreApplication::sendEvent(field, &filling);
        show(openCard_, {}, {});
    }

  signals:
    void changed();

  private:
    void show(const QString& openCard, const QString& result, const QString& sms) {
        openCard_ = openCard, result_ = result, sms_ = sms;
        emit changed();
    }

    korvane::HostService& service_;
    std::shared_ptr<void> phone_;
    QStandardItemModel cards_;
    QString openCard_, result_, sms_;
};
