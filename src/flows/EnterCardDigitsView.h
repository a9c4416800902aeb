// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "flows/KorvaneActionNavigationLink.h"
#include "flows/Screen.h"
#include "uikit/KorvanePassCodeInput.h"

namespace korvane {

/// The two screens on which a physical card proves possession: digits that are printed on it, kept in the
/// journey's state until the journey submits.
class EnterCardDigitsView final : public Screen {
  public:
    struct Row {
        std::string_view view;
        std::string_view title;
        std::string_view body;
        std::string_view button;
        KorvanePassCodeInput (*makeInput)();
        std::string JourneyState::*field;
        std::string_view next;
    };

    static const Row lastFour;
    static const Row cvv;

    EnterCardDigitsView(std::shared_ptr<NavigationStack> stack, const Row& row);
    ~EnterCardDigitsView() override;

  protected:
    std::vector<ScreenControl> controls() override;
    void describeContent(ScreenSnapshot& snapshot) const override;
    KorvanePassCodeInput* passcode() override { return &passCode_; }

  private:
    const Row& row_;
    KorvanePassCodeInput passCode_;
    KorvaneActionNavigationLink continue_;
};

}  // namespace korvane
