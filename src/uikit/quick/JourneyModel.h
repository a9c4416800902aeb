// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/CloseNotification.h>
#include <korvane/Journey.h>

#include <QtQml/qqmlregistration.h>
#include <QObject>
#include <QPointer>
#include <QQmlParserStatus>
#include <QString>
#include <QWindow>
#include <memory>

#include "uikit/quick/ScreenModel.h"

namespace korvane {

/// A journey for the QML that draws it: the screen shown now, the one shown before it, and the move between
/// them. Main thread; needs installed ports.
///
/// The journey is made when the component is complete, and made anew when the kind or the card changes later;
/// it starts when it first comes on screen.
class JourneyModel : public QObject, public QQmlParserStatus {
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    QML_ELEMENT

    Q_PROPERTY(Kind kind READ kind WRITE setKind NOTIFY kindChanged)
    Q_PROPERTY(QString cardId READ cardId WRITE setCardId NOTIFY cardIdChanged)
    /// A person can see the journey.
    Q_PROPERTY(bool visible READ visible WRITE setVisible NOTIFY visibleChanged)
    /// Screens that have no way out of the journey get a close control of the window's own.
    Q_PROPERTY(bool closable READ closable WRITE setClosable NOTIFY closableChanged)
    /// The window that the journey is drawn in: revealed card data is masked when it is hidden or minimised
    /// or loses the focus.
    Q_PROPERTY(QWindow* window READ window WRITE setWindow NOTIFY windowChanged)

    // Two models take turns, so that the screen that leaves stays as it was while it moves away.
    Q_PROPERTY(korvane::ScreenModel* even READ even CONSTANT)
    Q_PROPERTY(korvane::ScreenModel* odd READ odd CONSTANT)
    Q_PROPERTY(korvane::ScreenModel* current READ current NOTIFY moved)
    Q_PROPERTY(Move move READ move NOTIFY moved)

  public:
    enum class Kind { SetPIN, ActivateCardAndSetPIN, GetCardImage };
    Q_ENUM(Kind)
    /// How the present screen came: as the first one, pushed over the one before, uncovered by its going, or
    /// in its place.
    enum class Move { None, Push, Pop, Replace };
    Q_ENUM(Move)

    explicit JourneyModel(QObject* parent = nullptr);
    ~JourneyModel() override;

    Kind kind() const { return kind_; }
    void setKind(Kind kind);
    QString cardId() const { return cardId_; }
    void setCardId(const QString& cardId);
    bool visible() const { return visible_; }
    void setVisible(bool visible);
    bool closable() const { return closable_; }
    void setClosable(bool closable);
    QWindow* window() const { return window_; }
    void setWindow(QWindow* window);
    ScreenModel* even() { return &even_; }
    ScreenModel* odd() { return &odd_; }
    ScreenModel* current() { return current_; }
    Move move() const { return move_; }

    /// The window was closed from outside: the journey posts its result, unless it has before.
    void close();
    /// Ends the journey; the screens stay drawn but answer to nothing.
    void stop();
    /// Names the journey in its notifications; 0 when there is none.
    JourneyId journeyId() const { return journey_ ? journey_->id() : 0; }

    void classBegin() override {}
    void componentComplete() override;

  signals:
    void kindChanged();
    void cardIdChanged();
    void visibleChanged();
    void closableChanged();
    void windowChanged();
    void moved();
    /// The journey has come on screen: it wants the keys.
    void appeared();
    /// The journey is over: "SUCCESS", "CANCELED" or "FAILURE". The host takes the journey off the screen.
    void closed(const QString& result);

  private:
    void start();
    void appear();
    void show();
    void hideSensitive();

    Kind kind_ = Kind::SetPIN;
    QString cardId_;
    bool visible_ = false;
    bool closable_ = false;
    QPointer<QWindow> window_;
    bool complete_ = false;
    ScreenModel even_;
    ScreenModel odd_;
    ScreenModel* current_ = &even_;
    Move move_ = Move::None;
    std::uint64_t instance_ = 0;
    int depth_ = 0;
    std::shared_ptr<NotificationCenter::Observation> closing_;
    std::unique_ptr<Journey> journey_;
};

}  // namespace korvane
