// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "flows/KorvaneActionNavigationLink.h"
#include "flows/Screen.h"

namespace korvane {

struct JourneyState;

/// The first input screen of the activation, by the card's type.
std::string_view firstActivationInput(const JourneyState& state);

/// "Your card has arrived": where the activation journey starts for a card that is not active yet.
class ActivationStartPage final : public Screen {
  public:
    explicit ActivationStartPage(std::shared_ptr<NavigationStack> stack);

  protected:
    std::vector<ScreenControl> controls() override;
    void describeContent(ScreenSnapshot& snapshot) const override;

  private:
    KorvaneActionNavigationLink start_;
};

}  // namespace korvane
