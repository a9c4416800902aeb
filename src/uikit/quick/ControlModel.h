// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Journey.h>

#include <QtQml/qqmlregistration.h>
#include <QObject>
#include <QString>
#include <functional>

namespace korvane {

/// One control of the screen, as the QML draws it. It belongs to its `ScreenModel`; main thread.
class ControlModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Screens make their controls.")

    /// The control's id, which the item that draws it bears as its `objectName`.
    Q_PROPERTY(QString name READ name CONSTANT)
    Q_PROPERTY(QString label READ label NOTIFY labelChanged)
    /// The symbol drawn with it; empty: none.
    Q_PROPERTY(QString symbol READ symbol CONSTANT)
    /// The one button of the screen that carries the task on.
    Q_PROPERTY(bool primary READ primary CONSTANT)
    Q_PROPERTY(bool usable READ usable NOTIFY usableChanged)
    /// Of a switch: how it stands. It follows what it stands for, never the tap.
    Q_PROPERTY(bool on READ on NOTIFY onChanged)
    /// The call that is under way came from this control.
    Q_PROPERTY(bool busy READ busy NOTIFY busyChanged)
    /// Says so to people who do not see the wheel; empty while it is not busy.
    Q_PROPERTY(QString busyText READ busyText NOTIFY busyChanged)

  public:
    using Action = std::function<void(const std::string& controlId)>;

    ControlModel(const Control& control, bool primary, Action action, QObject* parent);

    QString name() const { return QString::fromStdString(id_); }
    QString label() const { return label_; }
    QString symbol() const;
    bool primary() const { return primary_; }
    bool usable() const { return usable_; }
    bool on() const { return on_; }
    bool busy() const { return busy_; }
    QString busyText() const;
    const std::string& id() const { return id_; }
    ControlKind kind() const { return kind_; }

    void setLabel(const QString& label);
    void setUsable(bool usable);
    void setOn(bool on);
    void setBusy(bool busy);

    /// Uses the control; nothing happens while it is not usable. The screen may be gone afterwards.
    Q_INVOKABLE void activate();

  signals:
    void labelChanged();
    void usableChanged();
    void onChanged();
    void busyChanged();

  private:
    std::string id_;
    ControlKind kind_;
    bool primary_;
    Action action_;
    QString label_;
    bool usable_ = false;
    bool on_ = false;
    bool busy_ = false;
};

/// A line of a list with a symbol in front. It belongs to its `ScreenModel`.
class BulletModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Screens make their lists.")

    Q_PROPERTY(QString symbol READ symbol CONSTANT)
    Q_PROPERTY(QString text READ text CONSTANT)
    /// It is something to do, not something to keep from.
    Q_PROPERTY(bool advised READ advised CONSTANT)

  public:
    BulletModel(const Bullet& bullet, QObject* parent);

    QString symbol() const { return symbol_; }
    QString text() const { return text_; }
    bool advised() const { return symbol_ == QLatin1StringView("checkmark.circle"); }

  private:
    QString symbol_;
    QString text_;
};

}  // namespace korvane
