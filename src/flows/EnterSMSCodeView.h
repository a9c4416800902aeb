// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/Timers.h>

#include <chrono>
#include <memory>

#include "flows/FailureRoute.h"
#include "flows/Screen.h"
#include "operations/Operations.h"
#include "uikit/KorvanePassCodeInput.h"

namespace korvane {

/// Where the code of the SMS is typed. It is submitted as soon as it is whole; another can be sent after a
/// while.
class EnterSMSCodeView final : public Screen {
  public:
    explicit EnterSMSCodeView(std::shared_ptr<NavigationStack> stack);
    ~EnterSMSCodeView() override;

    void onAppear() override;

  protected:
    std::vector<ScreenControl> controls() override;
    void describeContent(ScreenSnapshot& snapshot) const override;
    KorvanePassCodeInput* passcode() override { return &passCode_; }
    bool acceptsInput() const override { return !showSpinner_; }
    void passcodeChanged() override;

  private:
    void submit();
    void submitted(const KorvaneRetStruct& result);
    void startOver();
    void resend();
    void tick();
    int secondsToResend() const;

    KorvanePassCodeInput passCode_;
    Recovery recovery_;
    bool showSpinner_ = false;
    bool codeIncorrect_ = false;
    std::chrono::nanoseconds resendDeadline_{};
    std::unique_ptr<Timer> countdown_;
};

}  // namespace korvane
