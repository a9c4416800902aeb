// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/fakes/ScriptedCardService.h"
#include "sdk/SdkConfig.h"

namespace korvane {

using Fields = ScriptedCardService::Fields;

/// The scripted service, with what our own tests look at beside it.
class ScriptedService : public ScriptedCardService {
  public:
    /// The console lines since the last call of this, joined by "|".
    std::string printed() {
        std::string text;
        for (const std::string& line : device.console->lines()) text += (text.empty() ? "" : "|") + line;
        device.console->clear();
        return text;
    }

    SdkConfig& config = SdkConfig::sharedInstance();
};

}  // namespace korvane
