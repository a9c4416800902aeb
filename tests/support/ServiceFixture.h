// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/ScriptedService.h"

namespace korvane {

/// The scripted service below the journeys: the component holds tokens and an IV, "iv-0", and what nobody
/// told the service to answer stays unanswered.
class ServiceFixture : public testing::Test, protected ScriptedService {
  protected:
    ServiceFixture() {
        config.cardId = "card-1";
        config.currentPciToken = "pci-token";
        config.currentBearerToken = "bearer-0";
        config.ivIdStr = "iv-0";
        config.ivByteArray = iv;
        willAnswer({});
        printed();
    }
    void dropIv() {
        config.ivIdStr.clear();
        config.ivByteArray.clear();
    }
};

}  // namespace korvane
