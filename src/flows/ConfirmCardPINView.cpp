// SPDX-License-Identifier: Apache-2.0
#include "flows/ConfirmCardPINView.h"

#include <utility>

#include "flows/FailureRoute.h"
#include "flows/NavigationStack.h"
#include "flows/ScreenFactory.h"
#include "flows/ViewNames.h"
#include "platform/Log.h"
#include "sdk/SdkConfig.h"
#include "transport/IvAcquisition.h"

namespace korvane {
namespace {

/// The operation that submits the PIN: by card type in the activation journey, the PIN alone otherwise.
Operation startSubmission(const std::string& pin, OperationCompletion completion) {
    const SdkConfig& config = SdkConfig::sharedInstance();
    if (config.setPinOnly) return doPinSet(pin, std::move(completion));
    switch (config.currentCardType) {
        case eKorvaneCardType::virtual_:
            return doActivateVirtualCardAndSetPIN(pin, std::move(completion));
        case eKorvaneCardType::wearable:
            return doActivateWearableCardAndSetPIN(pin, std::move(completion));
        default:
            return doActivatePhysicalCardAndSetPIN(config.enteredLastFour, config.enteredCvv, pin,
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
    wipe(SdkConfig::sharedInstance().pendingPin);
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
    SdkConfig::sharedInstance().pendingPin = *enteredPin_;
    operation_ = startSubmission(*enteredPin_, [weak = weak(this)](const KorvaneRetStruct& result) {
        if (const auto self = weak.lock()) self->answered(result);
    });
    changed();
}

void ConfirmCardPINView::answered(const KorvaneRetStruct& result) {
    SdkConfig& config = SdkConfig::sharedInstance();
    if (!result.error) {
        wipe(config.pendingPin);
        autoNavTo(config.setPinOnly ? view::SuccessPinSetView : view::SuccessCardActivatedAndPinSetView);
        return;
    }
    log({"errmsg = ", result.errorMsg});
    const FailureRoute route = routeOf(result);
    switch (route.road) {
        case FailureRoute::Road::verifyBySMS:
            log(inClear(route.matched));
            config.viewToShowAfterSMSVerify = view::ConfirmCardPINView;
            autoNavTo(view::SMSExplainView);
            break;
        case FailureRoute::Road::ivExpired:
        case FailureRoute::Road::ivInvalid:
            renewIvAndSubmit();
            break;
        case FailureRoute::Road::errorPage:
            wipe(config.pendingPin);
            autoNavTo(view::UhOhTryAgainView);
            break;
    }
}

void ConfirmCardPINView::renewIvAndSubmit() {
    requestIv([weak = weak(this)](const auto&, const auto& ivId, const auto& ivBytes) {
        const auto self = weak.lock();
        if (!self) return;
        if (ivId && ivBytes) {
            self->submit();
        } else {
            wipe(SdkConfig::sharedInstance().pendingPin);
            self->autoNavTo(view::UhOhTryAgainView);
        }
    });
}

void ConfirmCardPINView::autoNavTo(std::string_view viewName) {
    showSpinner_ = false;
    autoNavToView_ = viewName;
    log({"autoNavToView: ", inClear(autoNavToView_)});
    doAutoNav_ = true;
    stack().push(makeAutoNavMultiView(sharedStack(), viewName));
}

std::vector<Screen::ScreenControl> ConfirmCardPINView::controls() {
    // No way back while the PIN is on its way: leaving then would leave open whether it was set.
    return {back(!showSpinner_),
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
