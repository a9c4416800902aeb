// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/CloseNotification.h>
#include <korvane/Export.h>
#include <korvane/Initialize.h>
#include <korvane/platform/ImageDecoder.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace korvane {

/// What a control looks like and does.
enum class ControlKind {
    button,    ///< runs its action
    toggle,    ///< a switch: asks for the other state, and shows the new one when it is reached
    passcode,  ///< digit boxes: typed into by `Journey::insertText` and the like
    row,       ///< a line that runs its action: of a card's details, it copies the value
    close,     ///< ends the journey
    back,      ///< leads to the screen below
};

/// Something on a screen that a person can use. Its id is the localization key of its label
/// ("sdk.setpin.button"), the name of its symbol ("xmark"), or "back".
struct Control {
    std::string id;                          ///< for `Journey::perform`
    ControlKind kind = ControlKind::button;  ///< how to draw it
    bool enabled = false;                    ///< it can be used now
    bool on = false;  ///< of a toggle: how it is shown. It follows what it stands for, never the tap.
};

/// A value of a screen's state.
using StateValue = std::variant<bool, int, std::string>;

/// One value of a screen's state, for consoles and tests.
struct StateField {
    std::string name;  ///< "showSpinner"
    StateValue value;  ///< never a PIN, code, token or anything of the card's data
};

/// One line of a list: of rules for a PIN, or of advice.
struct Bullet {
    std::string symbol;  ///< name of the symbol in front: "checkmark.circle", "xmark.octagon"
    std::string text;    ///< localization key
};

/// A row of digit boxes. What was typed is told by its number of digits alone when the boxes are masked.
struct PasscodeBoxes {
    std::string id;               ///< the control's id
    int size = 0;                 ///< number of boxes
    int filled = 0;               ///< boxes with a digit, from the first on
    int firstResponderIndex = 0;  ///< the box that takes the next digit; the last one when all are full
    bool secure = true;           ///< masked
    std::string visibleDigits;    ///< the digits, when the boxes are not masked
};

/// A sheet that slides up over the screen.
struct Sheet {
    std::string text;    ///< localization key
    std::string button;  ///< id of the control that closes it
};

/// The card as the viewer pictures it, with the symbol "contactless_icon" on it.
struct CardFace {
    std::shared_ptr<const ImageData> image;  ///< the same pointer as long as it is the same; null: draw a
                                             ///< placeholder card
    std::shared_ptr<const DecodedImage> decoded;  ///< what `ImageDecoder` made of `image`; null when that is
    std::string name;  ///< plain text: how the host names a wearable, else the card's type; may be empty
    std::string networkLogo;           ///< asset name: "mastercard_logo"; empty: none
    bool activated = false;            ///< the card is active, frozen or not
    bool frozen = false;               ///< the card is frozen: draw it so
    std::vector<std::string> message;  ///< localization keys over the card, header first; empty: none
    std::string button;                ///< id of the control over the card; empty: none
};

/// One line of the card's details.
struct DetailRow {
    std::string id;         ///< localization key of its label, and the control that copies the value
    std::string value;      ///< plain text: what to show now, the mask or the value itself
    bool masked = false;    ///< `value` is the mask; the value itself is not in the snapshot
    bool secret = false;    ///< it stands behind a mask unless the person revealed it
    bool copyable = false;  ///< mark it with the symbol "doc.on.doc"
};

/// A question over the screen; both of its answers are controls.
struct Popup {
    std::string header;   ///< localization key
    std::string body;     ///< localization key
    std::string confirm;  ///< id of the control that does it
    std::string cancel;   ///< id of the control that closes the popup and does nothing
};

/// All that there is to draw and to use on the screen that a person sees now. Texts are localization keys,
/// images are asset names, unless a field says otherwise.
struct ScreenSnapshot {
    std::string view;                ///< view name: "EnterCardPINView"; the host's own name while it decides
    std::uint64_t instance = 0;      ///< changes when another screen is shown, even one of the same name
    int depth = 0;                   ///< pushed screens below this one; grows on a push, shrinks on a pop
    std::vector<std::string> stack;  ///< hosts and screens from the journey's root up to this one
    std::vector<StateField> state;   ///< holds no PIN, code, token or card data
    std::vector<Control> controls;   ///< in reading order

    std::string image;                      ///< asset name of the picture at the top; empty: none
    std::string title;                      ///< heading; empty: none
    std::vector<std::string> body;          ///< paragraphs under the heading, in order
    std::vector<Bullet> bullets;            ///< list under the paragraphs
    std::optional<PasscodeBoxes> passcode;  ///< digit boxes, on the screens that have them
    std::string message;                    ///< inline error message; empty: none
    std::string toast;             ///< toast over the screen; empty: none. It goes by itself after 4 s.
    std::optional<Sheet> sheet;    ///< sheet over the screen; its controls are the ones to use
    std::optional<CardFace> card;  ///< the card, in the viewer
    std::vector<DetailRow> rows;   ///< the card's details, in the viewer
    std::optional<Popup> popup;    ///< question over the screen; its controls are the ones to use
    std::string disclosureText;  ///< plain text in the user's language, as the service sends it; empty: none
    bool spinner = false;        ///< a call is under way; what must not be tapped meanwhile is not enabled
};

/// Which journey.
enum class JourneyKind {
    setPIN,                 ///< set the PIN of an active card
    activateCardAndSetPIN,  ///< activate a new card, then set its PIN
    getCardImage,           ///< view the card: picture, details, freeze
};

/// One of the component's journeys for one card, without a window: what is shown is read with `screen`, what
/// a person does is told with `perform` and the passcode calls. Every toolkit, console and test drives this.
///
/// Any number of journeys may live at once; each works for its own card, and no data of one reaches another.
///
/// Main thread only. It may be destroyed at any time, from inside its own callbacks too. Whatever it started
/// ends then: nothing is called, repeated or stored any more. A PIN, an activation or a freeze that was
/// already sent may still be carried out by the service. It ends by posting `NotificationCloseUI`, and the
/// host answers by destroying it.
class KORVANE_API Journey {
  public:
    /// The id is not checked here: the service refuses one that it does not know. Needs installed ports.
    Journey(JourneyKind kind, std::string cardId);
    ~Journey();
    Journey(const Journey&) = delete;
    Journey& operator=(const Journey&) = delete;

    /// Tells that the journey came on screen: the first call starts its first decision.
    void appear();

    /// What is on screen now, as a value of the caller's own. Before `appear` it has no view and no controls.
    ScreenSnapshot screen() const;

    /// What became of a use. Anything but `done` has changed nothing.
    enum class Outcome {
        done,           ///< the screen took it
        noSuchControl,  ///< the screen has no control of that id, or no digit boxes
        notEnabled,     ///< the control is there and cannot be used now
        notDigits,      ///< the text holds something else than digits, blanks and dashes
    };

    /// Uses a control of the present screen.
    Outcome perform(std::string_view controlId);

    /// Types or pastes on the present screen: one digit goes into the next box, several take the place of all
    /// that is there. Blanks and dashes are dropped, so is what does not fit, and a text with anything else
    /// in it changes nothing.
    Outcome insertText(std::string_view text);
    /// Clears the digit before the focus.
    Outcome deleteBackward();
    /// The same, but one digit too takes the place of all that is there. A text without a digit changes
    /// nothing.
    Outcome replaceText(std::string_view text);

    /// Puts the masks back over revealed card data. Call it when others may come to see the screen: the
    /// window loses the focus or is minimised.
    void hideSensitive();

    /// Names this journey in the notifications that it posts (`NotificationCenter::JourneyObserver`).
    JourneyId id() const;

    /// The journey's window was closed from outside: posts `NotificationCloseUI` with the result that the
    /// journey has on the present screen ("SUCCESS" on a success page and in a card viewer in which something
    /// was done, "FAILURE" on an error page, else "CANCELED"). Nothing when a result was posted before.
    void close();

    /// Calls `changed` on the main queue once after any number of changes to the screen; one observer at a
    /// time; an empty function removes it.
    void onChange(std::function<void()> changed);

  private:
    friend class JourneyProbe;
    class KORVANE_HIDDEN Impl;
    std::shared_ptr<Impl> impl_;
};

}  // namespace korvane
