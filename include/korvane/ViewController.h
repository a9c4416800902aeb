// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>

#include <memory>
#include <string>

namespace korvane {

/// A journey in a window of its own, for hosts that have no QML. Main thread only; destroying it closes the
/// window and ends the journey. A person who closes the window gives up: `NotificationCloseUI` is posted with
/// "CANCELED".
class ViewController {
  public:
    virtual ~ViewController() = default;

    /// Opens the window, in device-independent pixels; the first call starts the journey.
    virtual void show(int width = 390, int height = 844) = 0;
    /// Hides the window; the journey stays where it is.
    virtual void hide() = 0;
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
