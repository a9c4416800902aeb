// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "tests/soak/RealDevice.h"

namespace korvane::testing {

/// Journeys on the real adapters, gone through by hand.
class DeviceTest : public ::testing::Test {
  protected:
    explicit DeviceTest(bool tls = true) : device(tls) {}
    static std::unique_ptr<Journey> begin(JourneyKind kind, const std::string& cardId) {
        auto journey = std::make_unique<Journey>(kind, cardId);
        journey->appear();
        return journey;
    }
    /// Waits for the view, types, and uses the control.
    void on(Journey& journey, const std::string& view, const std::string& control,
            std::string_view digits = {}) {
        ASSERT_TRUE(device.until([&] { return journey.screen().view == view && !journey.screen().spinner; }))
            << journey.screen().view << ", not " << view;
        if (!digits.empty()) journey.replaceText(digits);
        if (control.empty()) return;
        ASSERT_EQ(journey.perform(control), Journey::Outcome::done) << view;
    }
    void verify(Journey& journey, const std::string& cardId) {
        on(journey, "SMSExplainView", "sdk.sms.explain.button");
        on(journey, "EnterSMSCodeView", "");
        journey.replaceText(device.smsCode(cardId));
    }

    RealDevice device;
};

}  // namespace korvane::testing
