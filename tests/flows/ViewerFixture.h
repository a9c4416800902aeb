// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>

#include "sdk/SdkConfig.h"
#include "tests/flows/ScriptedService.h"

namespace korvane {

inline const std::string details = "sdk.cardviewer.device.details.";
inline const std::string reveal = details + "reveal";
inline const std::string number = details + "cardNumber";
inline const std::string activate = "sdk.cardviewer.activateAndSetPin.onCardButton";
inline const std::string freezing = "sdk.cardviewer.card.activateAndSetPin.";
inline const std::string freezeSwitch = freezing + "freezeMyCard";
inline const std::string freezeButton = freezing + "freezeCardPopup.freezeButton";
inline const std::string unFreezeButton = freezing + "unFreezeCardPopup.unFreezeButton";

class Viewer : public testing::Test {
  protected:
    DrivenJourney& start(const std::string& status = "A1", const std::string& type = "physical") {
        service.cardStatus = status;
        service.cardType = type;
        journey_ = std::make_unique<DrivenJourney>(service, JourneyKind::getCardImage);
        return *journey_;
    }
    CardFace card() const { return journey_->journey->screen().card.value(); }
    std::string toast() const { return journey_->journey->screen().toast; }
    void pass(std::chrono::duration<double> time) {
        service.device.timers->advance(time);
        service.settle();
    }

    ScriptedService service;
    SdkConfig& config = SdkConfig::sharedInstance();
    FakeConsole& console = *service.device.console;
    FakePasteboard& pasteboard = *service.device.pasteboard;

  private:
    std::unique_ptr<DrivenJourney> journey_;
};

}  // namespace korvane
