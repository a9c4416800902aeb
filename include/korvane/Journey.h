// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace korvane {

enum class ControlKind { button, toggle, passcode, row, close, back };

/// Something on a screen that a person can use. Its id is the localization key of its label
/// ("sdk.setpin.button"), the name of its symbol ("xmark"), or "back".
struct Control {
    std::string id;
    ControlKind kind = ControlKind::button;
    bool enabled = false;
};

using StateValue = std::variant<bool, int, std::string>;

struct StateField {
    std::string name;
    StateValue value;
};

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

/// All that there is to draw and to use on the screen that a person sees now. Texts are localization keys,
/// images are asset names.
struct ScreenSnapshot {
    std::string view;                ///< view name: "EnterCardPINView"; the host's own name while it decides
    std::uint64_t instance = 0;      ///< changes when another screen is shown, even one of the same name
    int depth = 0;                   ///< pushed screens below this one; grows on a push, shrinks on a pop
    std::vector<std::string> stack;  ///< hosts and screens from the journey's root up to this one
    std::vector<StateField> state;   ///< holds no PIN, code or token
    std::vector<Control> controls;   ///< in reading order

    std::string image;
    std::string title;
    std::vector<std::string> body;
    std::vector<Bullet> bullets;
    std::optional<PasscodeBoxes> passcode;
    std::string message;  ///< inline error message; empty: none
    std::string toast;    ///< toast over the screen; empty: none. It goes by itself.
    std::optional<Sheet> sheet;
    bool spinner = false;  ///< a call is under way; what must not be tapped meanwhile is not enabled
};

enum class JourneyKind { setPIN, activateCardAndSetPIN };

/// One of the component's journeys for one card, without a window: what is shown is read with `screen`, what
/// a person does is told with `perform` and the passcode calls. Every toolkit, console and test drives this.
///
/// Main thread only. It may be destroyed at any time, from inside its own callbacks too; calls under way then
/// end unheard. It ends by posting `NotificationCloseUI`, and the host answers by destroying it.
class Journey {
  public:
    /// Making one stores the card id in the shared state, even if the journey is never shown.
    Journey(JourneyKind kind, std::string cardId);
    ~Journey();
    Journey(const Journey&) = delete;
    Journey& operator=(const Journey&) = delete;

    /// Tells that the journey came on screen: the first call starts its first decision.
    void appear();

    ScreenSnapshot screen() const;

    enum class Outcome { done, noSuchControl, notEnabled, notDigits };

    /// Uses a control of the present screen.
    Outcome perform(std::string_view controlId);

    /// Types or pastes at the focused box of the present screen: digits go in, blanks and dashes are dropped,
    /// what does not fit is dropped, and a text with anything else in it changes nothing.
    Outcome insertText(std::string_view text);
    /// Clears the digit before the focus.
    Outcome deleteBackward();
    /// Clears all boxes, then inserts.
    Outcome replaceText(std::string_view text);

    /// Calls `changed` on the main queue once after any number of changes to the screen; one observer at a
    /// time.
    void onChange(std::function<void()> changed);

  private:
    class Impl;
    std::shared_ptr<Impl> impl_;
};

}  // namespace korvane
