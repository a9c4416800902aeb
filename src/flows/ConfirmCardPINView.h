// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include "flows/FailureRoute.h"
#include "flows/Screen.h"
#include "operations/Operations.h"
#include "uikit/KorvanePassCodeInput.h"

namespace korvane {

class ViewHost;

/// The new PIN, typed again and submitted. Every answer ends in an automatic move: to a success page, to the
/// SMS step and back here, or to an error page. Going back ends the submission: a request on the wire may
/// still be carried out, and is not repeated.
class ConfirmCardPINView final : public Screen {
  public:
    /// @param submitAtOnce the PIN was confirmed before the SMS step: submit it on first appearing
    ConfirmCardPINView(std::shared_ptr<NavigationStack> stack, std::string enteredPin, bool submitAtOnce);
    ~ConfirmCardPINView() override;

    void onAppear() override;
    void resumeAfterSMSVerify() override { processAndNavigateFromOnAppear_ = true; }

  protected:
    std::vector<ScreenControl> controls() override;
    void describeContent(ScreenSnapshot& snapshot) const override;
    KorvanePassCodeInput* passcode() override { return &passCode_; }
    bool acceptsInput() const override { return !showSpinner_; }
    void passcodeChanged() override { pinsDontMatch_ = false; }

  private:
    void confirm();
    void submit();
    void answered(const KorvaneRetStruct& result);
    void autoNavTo(std::string_view viewName);

    Wiped<std::string> enteredPin_;
    bool processAndNavigateFromOnAppear_;
    std::string autoNavToView_;
    bool doAutoNav_ = false;
    bool didCallAPI_ = false;
    bool showSpinner_ = false;
    bool pinsDontMatch_ = false;
    KorvanePassCodeInput passCode_;
    Recovery recovery_;
};

}  // namespace korvane
