// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/CloseNotification.h>
#include <korvane/Journey.h>
#include <korvane/platform/Timers.h>

#include <QtQml/qqmlregistration.h>
#include <QList>
#include <QObject>
#include <QQmlListProperty>
#include <memory>
#include <string_view>

#include "uikit/quick/CardModel.h"
#include "uikit/quick/ControlModel.h"

namespace korvane {

/// One screen of a journey as typed properties with texts in the user's language. Main thread.
///
/// A property signals only when its own value changed, so nothing flickers and the focus stays. No property
/// holds a digit: the boxes are drawn by `PasscodeItem` and the card's numbers by `CardValue`, which ask in
/// C++.
class ScreenModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Journeys make their screens.")

    /// The view name; the root item of the screen bears it as its `objectName`.
    Q_PROPERTY(QString view READ view NOTIFY viewChanged)
    Q_PROPERTY(Layout layout READ layout NOTIFY layoutChanged)
    /// There is a screen below this one, even if a call under way bars the way back for now.
    Q_PROPERTY(bool backShown READ backShown NOTIFY backShownChanged)
    Q_PROPERTY(QString image READ image NOTIFY imageChanged)
    Q_PROPERTY(QString title READ title NOTIFY titleChanged)
    Q_PROPERTY(QList<QString> body READ body NOTIFY bodyChanged)
    Q_PROPERTY(QQmlListProperty<korvane::BulletModel> bullets READ bullets NOTIFY bulletsChanged)
    Q_PROPERTY(QString message READ message NOTIFY messageChanged)
    Q_PROPERTY(QString toast READ toast NOTIFY toastChanged)
    Q_PROPERTY(bool spinner READ spinner NOTIFY spinnerChanged)

    Q_PROPERTY(korvane::ControlModel* back READ back NOTIFY controlsChanged)
    Q_PROPERTY(korvane::ControlModel* close READ close NOTIFY controlsChanged)
    Q_PROPERTY(korvane::ControlModel* row READ row NOTIFY controlsChanged)
    Q_PROPERTY(korvane::ControlModel* passcode READ passcode NOTIFY controlsChanged)
    /// The buttons at the foot of the screen, the primary one first.
    Q_PROPERTY(QQmlListProperty<korvane::ControlModel> buttons READ buttons NOTIFY controlsChanged)

    /// What the boxes are and how far they are filled, for people who do not see them.
    Q_PROPERTY(QString passcodeDescription READ passcodeDescription NOTIFY passcodeChanged)

    /// Of the card viewer.
    Q_PROPERTY(korvane::CardModel* card READ card CONSTANT)
    Q_PROPERTY(QQmlListProperty<korvane::DetailModel> details READ details NOTIFY detailsChanged)
    Q_PROPERTY(korvane::ControlModel* revealSwitch READ revealSwitch NOTIFY controlsChanged)
    Q_PROPERTY(korvane::ControlModel* freezeSwitch READ freezeSwitch NOTIFY controlsChanged)
    /// In parts that lay out fast; see `paragraphs`.
    Q_PROPERTY(QStringList disclosure READ disclosure NOTIFY disclosureChanged)

    /// A question over the screen; its words and buttons stay while it fades away.
    Q_PROPERTY(bool popupOpen READ popupOpen NOTIFY popupOpenChanged)
    Q_PROPERTY(QString popupHeader READ popupHeader NOTIFY popupChanged)
    Q_PROPERTY(QString popupBody READ popupBody NOTIFY popupChanged)
    Q_PROPERTY(korvane::ControlModel* popupConfirm READ popupConfirm NOTIFY popupChanged)
    Q_PROPERTY(korvane::ControlModel* popupCancel READ popupCancel NOTIFY popupChanged)

    /// The sheet's text and button stay while it slides away.
    Q_PROPERTY(bool sheetOpen READ sheetOpen NOTIFY sheetOpenChanged)
    Q_PROPERTY(QString sheetText READ sheetText NOTIFY sheetTextChanged)
    Q_PROPERTY(korvane::ControlModel* sheetButton READ sheetButton NOTIFY sheetButtonChanged)

  public:
    /// How the parts are arranged: a turning wheel alone, boxes to type in, a picture with words, or the
    /// card.
    enum class Layout { Waiting, Entry, Message, Viewer };
    Q_ENUM(Layout)

    /// The close control of the window's own, for screens of the journey that have none.
    static const Control windowClose;

    explicit ScreenModel(QObject* parent = nullptr);
    ~ScreenModel() override;

    QString view() const { return view_; }
    Layout layout() const { return layout_; }
    bool backShown() const { return backShown_; }
    QString image() const { return image_; }
    QString title() const { return title_; }
    QList<QString> body() const { return body_; }
    QQmlListProperty<BulletModel> bullets() { return {this, &bullets_}; }
    QString message() const { return message_; }
    QString toast() const { return toast_; }
    bool spinner() const { return spinner_; }
    ControlModel* back() const { return first(ControlKind::back); }
    ControlModel* close() const { return first(ControlKind::close); }
    ControlModel* row() const { return first(ControlKind::row); }
    ControlModel* passcode() const { return first(ControlKind::passcode); }
    QQmlListProperty<ControlModel> buttons() { return {this, &buttons_}; }
    QString passcodeDescription() const { return passcodeDescription_; }
    CardModel* card() { return &card_; }
    QQmlListProperty<DetailModel> details() { return {this, &details_}; }
    ControlModel* revealSwitch() const;
    ControlModel* freezeSwitch() const;
    QStringList disclosure() const { return disclosure_; }
    bool popupOpen() const { return popupOpen_; }
    QString popupHeader() const { return popupHeader_; }
    QString popupBody() const { return popupBody_; }
    ControlModel* popupConfirm() const { return popupConfirm_; }
    ControlModel* popupCancel() const { return popupCancel_; }
    bool sheetOpen() const { return sheetOpen_; }
    QString sheetText() const { return sheetText_; }
    ControlModel* sheetButton() const { return sheetButton_; }

    /// Shows another screen in this model's place.
    void load(const ScreenSnapshot& snapshot);
    /// Takes over what changed on the same screen.
    void update(const ScreenSnapshot& snapshot);
    /// Where use goes to; none for a screen that is no longer shown, so that a late tap on it does nothing.
    void attach(Journey* journey) { journey_ = journey; }

    /// Puts no more than masks over card data, for a journey that has ended.
    void forgetSecrets();

    /// The boxes, for the item that draws them.
    const std::optional<PasscodeBoxes>& boxes() const { return boxes_; }
    void insertText(std::string_view text);
    void deleteBackward();
    /// Uses the primary button when it is usable, as the Enter key does.
    void submit();

    /// Answers Escape: cancels the question or closes the sheet, else goes back. False when there is none.
    Q_INVOKABLE bool escape();

  signals:
    void viewChanged();
    void layoutChanged();
    void backShownChanged();
    void imageChanged();
    void titleChanged();
    void bodyChanged();
    void bulletsChanged();
    void messageChanged();
    void toastChanged();
    void spinnerChanged();
    void controlsChanged();
    void passcodeChanged();
    void detailsChanged();
    void disclosureChanged();
    void popupOpenChanged();
    void popupChanged();
    void sheetOpenChanged();
    void sheetTextChanged();
    void sheetButtonChanged();
    /// Another screen has come, or the same one in another layout: draw it afresh.
    void loaded();
    /// The boxes were refused and wait for another entry: give them the focus.
    void entryWanted();

  private:
    template <class Value>
    void set(Value& field, Value value, void (ScreenModel::*changed)());
    void retranslate();
    void take(const ScreenSnapshot& snapshot);
    void timeSpinner(bool spinner);
    std::string_view waitingText() const;
    void updateSheet(const ScreenSnapshot& snapshot);
    void updatePopup(const ScreenSnapshot& snapshot);
    void updateCard(const ScreenSnapshot& snapshot);
    void updateControls(const ScreenSnapshot& snapshot);
    void updateBullets(const ScreenSnapshot& snapshot);
    void updateBoxes(const ScreenSnapshot& snapshot);
    void describeBoxes();
    ControlModel* first(ControlKind kind) const;
    ControlModel* find(std::string_view id) const;
    void replace(ControlModel*& model, const std::string& id, bool primary, const ScreenSnapshot& snapshot);
    ControlModel* makeControl(const Control& control, bool primary);
    void perform(const std::string& controlId);

    Journey* journey_ = nullptr;
    QString view_;
    Layout layout_ = Layout::Waiting;
    bool backShown_ = false;
    QString image_;
    QString title_;
    QList<QString> body_;
    QList<BulletModel*> bullets_;
    std::vector<Bullet> bulletKeys_;
    QString message_;
    QString toast_;
    bool spinner_ = false;
    bool slow_ = false;                 // for 10 s
    std::unique_ptr<Timer> slowTimer_;  // while it turns
    QList<ControlModel*> controls_;
    QList<ControlModel*> buttons_;
    std::string lastUsed_;  ///< the control that a call under way came from
    std::optional<PasscodeBoxes> boxes_;
    QString passcodeDescription_;
    CardModel card_{this};
    QList<DetailModel*> details_;
    QStringList disclosure_;
    bool popupOpen_ = false;
    QString popupHeader_;
    QString popupBody_;
    ControlModel* popupConfirm_ = nullptr;
    ControlModel* popupCancel_ = nullptr;
    bool sheetOpen_ = false;
    QString sheetText_;
    ControlModel* sheetButton_ = nullptr;
    std::shared_ptr<NotificationCenter::Observation> language_;
};

}  // namespace korvane
