// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "operations/Operations.h"
#include "tests/support/ScriptedService.h"

namespace korvane {

/// The scripted service below the journeys: the component holds tokens and an IV, "iv-0", and a request
/// without a scripted answer stays unanswered.
class ServiceFixture : public ::testing::Test, protected ScriptedService {
  protected:
    ServiceFixture() {
        config.currentPciToken = "pci-token";
        config.currentBearerToken = "bearer-0";
        config.gotInitialIV = false;
        config.trackingUUID.clear();
        config.brandId.clear();
        config.ivIdStr = "iv-0";
        config.ivByteArray = iv;
        willAnswer({});
        printed();
    }
    const StatePtr state = std::make_shared<JourneyState>(config, "card-1");

    void dropIv() {
        config.ivIdStr.clear();
        config.ivByteArray.clear();
    }
};

}  // namespace korvane
