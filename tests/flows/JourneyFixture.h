// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <korvane/CloseNotification.h>
#include <korvane/Journey.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/ScriptedService.h"

namespace korvane {

using testing::HasSubstr;
using testing::Not;

using Views = std::vector<std::string>;

/// A journey on the scripted service, driven as a person would.
class JourneyFixture : public testing::Test, protected ScriptedService {
  protected:
    /// Shows another journey for a card of that status and type. Like all that a person does it lets
    /// everything settle, and tells the view that is then shown.
    std::string start(JourneyKind kind, const std::string& status = "A1",
                      const std::string& type = "physical");
    /// The view that is then shown, or "not enabled", "no such control", "not digits".
    std::string tap(const std::string& controlId);
    std::string type(const std::string& digits);  ///< in place of what was typed
    std::string insert(const std::string& digits);
    /// Through the SMS step with the right code, from its explanation on.
    std::string verifyBySMS();
    /// From the PIN entry to what comes of the confirm button.
    std::string enterAndConfirm(const std::string& pin);
    void pass(std::chrono::duration<double> time);

    ScreenSnapshot screen() const { return journey->screen(); }
    std::string view() const { return screen().view; }
    Views stack() const { return screen().stack; }
    int filled() const { return screen().passcode->filled; }
    bool enabled(const std::string& controlId) const;
    /// "isCardFrozen=false resendSeconds=30 …", every field that is told.
    std::string state() const;
    /// What is shown in the row; "none" when there is no such row.
    std::string row(const std::string& id) const;
    bool printedLine(const std::string& line) const { return device.console->has(line); }

    std::unique_ptr<Journey> journey;
    std::string closed;  ///< results of the close notifications of this journey so far

  private:
    std::string shown(Journey::Outcome outcome);

    std::shared_ptr<NotificationCenter::Observation> observation_ =
        NotificationCenter::defaultCenter().observe(
            NotificationCloseUI, [this](const NotificationUserInfo& info) { closed += info.at("result"); });
};

inline const std::string details = "sdk.cardviewer.device.details.";
inline const std::string reveal = details + "reveal";
inline const std::string number = details + "cardNumber";
inline const std::string activate = "sdk.cardviewer.activateAndSetPin.onCardButton";
inline const std::string freezing = "sdk.cardviewer.card.activateAndSetPin.";
inline const std::string freezeSwitch = freezing + "freezeMyCard";

class Viewer : public JourneyFixture {
  protected:
    std::string show(const std::string& status = "A1", const std::string& type = "physical") {
        return start(JourneyKind::getCardImage, status, type);
    }
    CardFace card() const { return screen().card.value(); }
    std::string toast() const { return screen().toast; }
};

}  // namespace korvane
