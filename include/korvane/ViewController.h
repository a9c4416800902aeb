// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/CloseNotification.h>
#include <korvane/Export.h>

#include <memory>
#include <string>

namespace korvane {

/// A journey in a window of its own, for hosts that have no QML. Main thread only; destroying it closes the
/// window and ends the journey. When a person closes the window, `NotificationCloseUI` is posted with the
/// result that the journey has on the present screen (`Journey::close`), unless a result was posted before.
/// Screens without a way out of the journey have a close control in this window, which does the same.
class ViewController {
  public:
    virtual ~ViewController() = default;

    /// Opens the window, in device-independent pixels; the first call starts the journey.
    virtual void show(int width = 390, int height = 844) = 0;
    /// Hides the window; the journey stays where it is.
    virtual void hide() = 0;

    /// Names the journey in the notifications that it posts (`NotificationCenter::JourneyObserver`).
    virtual JourneyId journeyId() const = 0;
};

// The factories need Korvane::Quick, a running QGuiApplication and installed ports.

/// Makes the journey that sets the PIN of an active card.
class KORVANE_API SetPINFactory {
  public:
    /// Stores the card id as the one being worked on. Never null; the caller owns it, and nothing is seen of
    /// it before `show`.
    static std::unique_ptr<ViewController> create(const std::string& cardId);
};

/// Makes the journey that activates a new card and sets its PIN.
class KORVANE_API ActivateCardAndSetPINFactory {
  public:
    /// As `SetPINFactory::create`.
    static std::unique_ptr<ViewController> create(const std::string& cardId);
};

/// Makes the card viewer.
class KORVANE_API GetCardImageFactory {
  public:
    /// As `SetPINFactory::create`.
    static std::unique_ptr<ViewController> create(const std::string& cardId);
};

}  // namespace korvane
