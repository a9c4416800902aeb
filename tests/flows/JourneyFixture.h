// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <korvane/CloseNotification.h>
#include <korvane/Journey.h>

#include <memory>
#include <string>
#include <vector>

#include "flows/JourneyProbe.h"
#include "sdk/JourneyState.h"
#include "tests/support/ScriptedService.h"

namespace korvane {

/// A journey on the scripted service, driven as a person would.
class JourneyFixture : public testing::Test, protected ScriptedService {
  protected:
    /// Shows another journey for a card of that status and type, and tells the view that is then shown.
    std::string start(JourneyKind kind = JourneyKind::setPIN, const std::string& status = "A1",
                      const std::string& type = "physical");
    std::string showCard(const std::string& status = "A1", const std::string& type = "physical") {
        return start(JourneyKind::getCardImage, status, type);
    }

    /// Does one thing after the other and lets everything settle each time: "type 1357" in place of what was
    /// typed, "insert 4", "wait 30" in seconds, else a tap on the control of that id, or whose id ends so.
    /// Behind " > " stands what must then be seen. Tells what came of the last one: a view or a refusal.
    std::string walk(const std::vector<std::string>& steps);
    std::string tap(const std::string& control) { return walk({control}); }
    /// Checks what is seen: views or refusals as `walk` tells them, and "name=value", divided by ", ".
    void see(const std::string& expected);
    /// What goes by that name: "filled", "message", "toast", "stack", "controls" (how many), "closed",
    /// "typed" (what is kept of it), "pasteboard", "calls pinSet" (in this journey), the parts of the card's
    /// face, a state field, a row, a control ("on", "off"), a field as it was sent last ("pinSet.PIN"); else
    /// "none".
    std::string value(const std::string& name) const;

    /// Through the SMS step with the right code, from its explanation on.
    std::string verifyBySMS() { return walk({"sdk.sms.explain.button", "type 123456"}); }
    /// From the PIN entry to what comes of the confirm button.
    std::string enterAndConfirm() {
        return walk({"type 2580", "sdk.setpin.button", "type 2580", "sdk.confirmpin.button"});
    }
    ScreenSnapshot screen() const { return journey->screen(); }
    /// What the journey that was started last keeps.
    JourneyState& state() const { return *JourneyProbe::state(*journey); }

    std::unique_ptr<Journey> journey;

  private:
    std::string outcome_;          ///< of the last step
    std::string closed_;           ///< results of the close notifications of this journey so far
    std::ptrdiff_t requests_ = 0;  ///< before this journey
    std::shared_ptr<NotificationCenter::Observation> observation_ =
        NotificationCenter::defaultCenter().observe(
            NotificationCloseUI, [this](const NotificationUserInfo& info) { closed_ += info.at("result"); });
};

}  // namespace korvane
