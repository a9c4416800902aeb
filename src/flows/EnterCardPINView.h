// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "flows/KorvaneActionNavigationLink.h"
#include "flows/Screen.h"
#include "uikit/KorvanePassCodeInput.h"

namespace korvane {

/// The new PIN, typed for the first time. A weak one leads to a warning, any other to its confirmation.
class EnterCardPINView final : public Screen {
  public:
    explicit EnterCardPINView(std::shared_ptr<NavigationStack> stack);

    void onAppear() override;

  protected:
    std::vector<ScreenControl> controls() override;
    void describeContent(ScreenSnapshot& snapshot) const override;
    KorvanePassCodeInput* passcode() override { return &passCode_; }
    bool acceptsInput() const override { return !bottomSheetShown_; }

  private:
    std::shared_ptr<Screen> makeNext();
    void showBottomSheet(bool shown);

    KorvanePassCodeInput passCode_;
    KorvaneActionNavigationLink continue_;
    bool bottomSheetShown_ = false;
    std::string_view viewToShow_;
};

}  // namespace korvane
