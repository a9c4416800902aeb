// SPDX-License-Identifier: Apache-2.0
#include "flows/ConfirmCardPINView.h"

#include <utility>

#include "flows/NavigationStack.h"
#include "flows/ScreenFactory.h"
#include "flows/ViewNames.h"
#include "platform/Log.h"
#include "sdk/JourneyState.h"

namespace korvane {
namespace {

/// The operation that submits the PIN: by card type in the activation journey, the PIN alone otherwise.
Handle startSubmission(const StatePtr& state, const std::string& pin, OperationCompletion completion) {
    if (state->setPinOnly) return doPinSet(state, pin, std::move(completion));
    switch (state->currentCardType) {
        case eKorvaneCardType::virtual_:
            return doActivateVirtualCardAndSetPIN(state, pin, std::move(completion));
        case eKorvaneCardType::wearable:
            return doActivateWearableCardAndSetPIN(state, pin, std::move(completion));
        default:
            return doActivatePhysicalCardAndSetPIN(state, state->enteredLastFour, state->enteredCvv, pin,
                                                   std::move(completion));
    }
}

}  // namespace

ConfirmCardPINView::ConfirmCardPINView(std::shared_ptr<NavigationStack> stack, std::string enteredPin,
                                       bool submitAtOnce)
    : Screen(std::move(stack), view::ConfirmCardPINView),
      enteredPin_(std::move(enteredPin)),
      processAndNavigateFromOnAppear_(submitAtOnce),
      passCode_(KorvanePassCodeViewPIN("sdk.confirmpin.input")) {}

ConfirmCardPINView::~ConfirmCardPINView() {
    wipe(state().pendingPin);
}

void ConfirmCardPINView::onAppear() {
    if (!std::exchange(processAndNavigateFromOnAppear_, false)) return;
    log("ConfirmCardPINView - we're re-attempting in onAppear via processAndNavigateFromOnAppear");
    submit();
}

void ConfirmCardPINView::confirm() {
    if (passCode_.inputModel().passCodeString != *enteredPin_) {
        passCode_.clear();
        pinsDontMatch_ = true;
        changed();
        return;
    }
    submit();
}

void ConfirmCardPINView::submit() {
    showSpinner_ = true;
    didCallAPI_ = true;
    state().pendingPin = *enteredPin_;
    recovery_.underWay =
        startSubmission(sharedState(), *enteredPin_, [weak = weak(this)](const KorvaneRetStruct& result) {
            if (const auto self = weak.lock()) self->answered(result);
        });
    changed();
}

void ConfirmCardPINView::answered(const KorvaneRetStruct& result) {
    if (!result.error) {
        wipe(state().pendingPin);
        autoNavTo(state().setPinOnly ? view::SuccessPinSetView : view::SuccessCardActivatedAndPinSetView);
        return;
    }
    log({"errmsg = ", result.errorMsg});
    leadOn(state(), result, shared_from_this(), recovery_,
           {.verifyBySMS =
                [this](std::string_view matched) {
                    log(inClear(matched));
                    state().viewToShowAfterSMSVerify = view::ConfirmCardPINView;
                    autoNavTo(view::SMSExplainView);
                },
            .runAgain = [this](std::string_view) { submit(); },
            .giveUp =
                [this] {
                    wipe(state().pendingPin);
                    autoNavTo(view::UhOhTryAgainView);
                }});
}

void ConfirmCardPINView::autoNavTo(std::string_view viewName) {
    showSpinner_ = false;
    autoNavToView_ = viewName;
    log({"autoNavToView: ", inClear(autoNavToView_)});
    doAutoNav_ = true;
    stack().push(makeAutoNavMultiView(sharedStack(), viewName));
}

std::vector<Screen::ScreenControl> ConfirmCardPINView::controls() {
    return {back(),
            {{passCode_.id(), ControlKind::passcode, !showSpinner_}, nullptr},
            button("sdk.confirmpin.button", passCode_.inputModel().isValid && !showSpinner_,
                   [this] { confirm(); })};
}

void ConfirmCardPINView::describeContent(ScreenSnapshot& snapshot) const {
    snapshot.title = "sdk.confirmpin.header";
    snapshot.spinner = showSpinner_;
    if (pinsDontMatch_) snapshot.message = "sdk.error.matchpin.message";
    snapshot.state.push_back({"processAndNavigateFromOnAppear", processAndNavigateFromOnAppear_});
    snapshot.state.push_back({"autoNavToView", autoNavToView_});
    snapshot.state.push_back({"doAutoNav", doAutoNav_});
    snapshot.state.push_back({"didCallAPI", didCallAPI_});
    snapshot.state.push_back({"showSpinner", showSpinner_});
    snapshot.state.push_back({"pinsDontMatch", pinsDontMatch_});
}

}  // namespace korvane
