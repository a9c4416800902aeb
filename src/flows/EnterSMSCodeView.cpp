// SPDX-License-Identifier: Apache-2.0
#include "flows/EnterSMSCodeView.h"

#include <korvane/platform/Ports.h>

#include <utility>

#include "base/Text.h"
#include "flows/NavigationStack.h"
#include "flows/SMSCodeRequest.h"
#include "flows/ScreenFactory.h"
#include "flows/ViewNames.h"
#include "sdk/JourneyState.h"

namespace korvane {
namespace {

constexpr std::chrono::seconds resendDelay{30};

}  // namespace

EnterSMSCodeView::EnterSMSCodeView(std::shared_ptr<NavigationStack> stack)
    : Screen(std::move(stack), view::EnterSMSCodeView),
      passCode_(KorvanePassCodeViewTwoFactor("sdk.sms.code.input")) {
    resendDeadline_ = ports().timers->now() + resendDelay;
}

EnterSMSCodeView::~EnterSMSCodeView() {
    wipe(state().twoFactorCode);
}

void EnterSMSCodeView::onAppear() {
    tick();
}

void EnterSMSCodeView::passcodeChanged() {
    codeIncorrect_ = false;
    if (passCode_.inputModel().isValid) submit();
}

void EnterSMSCodeView::submit() {
    showSpinner_ = true;
    state().twoFactorCode = passCode_.inputModel().passCodeString;
    recovery_.underWay =
        doPciTokenSubmission(sharedState(), [weak = weak(this)](const KorvaneRetStruct& result) {
            if (const auto self = weak.lock()) self->submitted(result);
        });
    changed();
}

void EnterSMSCodeView::submitted(const KorvaneRetStruct& result) {
    if (!result.error) {
        showSpinner_ = false;
        std::string next = std::exchange(state().viewToShowAfterSMSVerify, {});
        if (next.empty()) next = std::exchange(state().viewToShowAfterSMSVerifyBackup, {});
        stack().leaveSMSStep(next);
    } else if (equalIgnoringCase(result.errorMsg, "Failure: Incorrect SMS verification code")) {
        showSpinner_ = false;
        recovery_.backoff.reset();
        codeIncorrect_ = true;
        passCode_.clear();
        changed();
    } else if (result.errorMsg == "forceSMSFlowReset") {
        startOver();
    } else {
        leadOn(state(), result, shared_from_this(), recovery_,
               {.verifyBySMS =
                    [this](std::string_view) {
                        // The SMS token is spent or too old: no code can be right any more.
                        stack().showToast("sdk.sms.code.expired");
                        startOver();
                    },
                .runAgain = [this](std::string_view) { submit(); },
                .giveUp =
                    [this] {
                        // The code stays: the button submits it again when the person comes back.
                        showSpinner_ = false;
                        changed();
                        stack().push(
                            makeScreen(sharedStack(), view::UhOhTryAgainWithErrorMsgView, ScreenArguments{}));
                    }});
    }
}

void EnterSMSCodeView::startOver() {
    wipe(state().decryptedPciSmsToken);
    dismiss();
}

void EnterSMSCodeView::resend() {
    showSpinner_ = true;
    recovery_.underWay = requestSMSCode(sharedState(), [weak = weak(this)](const KorvaneRetStruct& result) {
        const auto self = weak.lock();
        if (!self) return;
        self->showSpinner_ = false;
        if (result.error) {
            self->stack().showToast("errors.generic.api");
            return;
        }
        self->codeIncorrect_ = false;
        self->passCode_.clear();
        self->resendDeadline_ = ports().timers->now() + resendDelay;
        self->tick();
        self->stack().showToast("sdk.sms.code.resent");
    });
    changed();
}

int EnterSMSCodeView::secondsToResend() const {
    const auto left = resendDeadline_ - ports().timers->now();
    return left.count() <= 0 ? 0 : static_cast<int>(std::chrono::ceil<std::chrono::seconds>(left).count());
}

void EnterSMSCodeView::tick() {
    countdown_.reset();
    const auto left = resendDeadline_ - ports().timers->now();
    if (left.count() > 0) {
        // Up to the next whole second that is left, so that a device that slept shows the right number at
        // once.
        const auto step = left - std::chrono::seconds(secondsToResend() - 1);
        countdown_ = ports().timers->start(step, [weak = weak(this)] {
            if (const auto self = weak.lock()) self->tick();
        });
    }
    changed();
}

std::vector<Screen::ScreenControl> EnterSMSCodeView::controls() {
    return {
        back().control.enabled ? ScreenControl{{"back", ControlKind::back, true}, [this] { startOver(); }}
                               : back(),
        {{passCode_.id(), ControlKind::passcode, !showSpinner_}, nullptr},
        button("sdk.sms.code.button", passCode_.inputModel().isValid && !showSpinner_, [this] { submit(); }),
        button("sdk.sms.code.resend", secondsToResend() == 0 && !showSpinner_, [this] { resend(); })};
}

void EnterSMSCodeView::describeContent(ScreenSnapshot& snapshot) const {
    snapshot.title = "sdk.sms.code.header";
    snapshot.body = {"sdk.sms.code.subheader"};
    if (codeIncorrect_) snapshot.message = "sdk.sms.code.incorrect";
    snapshot.spinner = showSpinner_;
    snapshot.state.push_back({"showSpinner", showSpinner_});
    snapshot.state.push_back({"resendSeconds", secondsToResend()});
}

}  // namespace korvane
