// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/CloseNotification.h>

#include <QtQml/qqmlregistration.h>
#include <QObject>
#include <QString>
#include <functional>
#include <memory>

#include "uikit/quick/ControlModel.h"

namespace korvane {

/// The sheet of a biometric check, as the QML draws it. Main thread; needs installed ports.
class BiometricSheetModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The prompt makes it.")

    Q_PROPERTY(QString reason READ reason NOTIFY changed)
    /// What to do, or what went wrong with the last finger.
    Q_PROPERTY(QString message READ message NOTIFY changed)
    /// The message tells what went wrong.
    Q_PROPERTY(bool trouble READ trouble NOTIFY changed)
    /// The sheet is up, or on its way up; else on its way out.
    Q_PROPERTY(bool open READ open NOTIFY changed)
    Q_PROPERTY(korvane::ControlModel* cancel READ cancel CONSTANT)

  public:
    /// @param reason in the person's language
    /// @param cancelled runs when the person declines; this may be gone afterwards
    BiometricSheetModel(const std::string& reason, std::function<void()> cancelled);

    QString reason() const { return reason_; }
    QString message() const;
    bool trouble() const { return !trouble_.empty(); }
    bool open() const { return open_; }
    ControlModel* cancel() { return &cancel_; }

    void setOpen(bool open);
    /// Whether a finger would be read now. What went wrong before is forgotten meanwhile.
    void setArmed(bool armed);
    /// What went wrong with a finger, by its localization key.
    void tell(std::string_view messageId);

  signals:
    void changed();
    /// The message is new, or the same once more: it wants attention.
    void told();

  private:
    void retranslate();

    QString reason_;
    bool reasonIsOwn_;  ///< it is the component's own text, which can be told in another language
    ControlModel cancel_;
    std::string trouble_;
    bool open_ = false;
    bool armed_ = false;
    std::shared_ptr<NotificationCenter::Observation> language_;
};

}  // namespace korvane
