// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

namespace korvane {

/// A journey in a window of its own, for hosts that have no QML. Main thread only; destroying it closes the
/// window and ends the journey.
class ViewController {
  public:
    virtual ~ViewController() = default;

    /// Opens the window, in device-independent pixels; the first call starts the journey.
    virtual void show(int width = 390, int height = 844) = 0;
    /// Hides the window; the journey stays where it is.
    virtual void hide() = 0;
};

// The factories need Korvane::Quick, a running QGuiApplication and installed ports.

class SetPINFactory {
  public:
    static std::unique_ptr<ViewController> create(const std::string& cardId);
};

class ActivateCardAndSetPINFactory {
  public:
    static std::unique_ptr<ViewController> create(const std::string& cardId);
};

class GetCardImageFactory {
  public:
    static std::unique_ptr<ViewController> create(const std::string& cardId);
};

}  // namespace korvane
