// SPDX-License-Identifier: Apache-2.0
#include "flows/AppearStruct.h"

#include <utility>

#include "custody/AuthenticateBiometric.h"
#include "flows/CardPictureReading.h"
#include "flows/ViewNames.h"
#include "platform/Log.h"
#include "sdk/JourneyState.h"

namespace korvane {

AppearStruct::AppearStruct(StatePtr state, Journey journey, std::function<void()> decided)
    : state_(std::move(state)), journey_(journey), decided_(std::move(decided)) {}

void AppearStruct::doAppear() {
    if (didCallAPI) return;
    didCallAPI = true;
    showSpinner = true;
    log({"Top of doAppear()  -- ", inClear(journey_.name)});
    if (!startGate()) doAppearGuts();
}

bool AppearStruct::startGate() {
    SdkConfig& config = state_->sdk;
    if (!config.useBiometrics) {
        AuthenticateBiometric::deleteWhatIsDue(config);
        return false;
    }
    // A token in memory needs no check while a timer runs that takes it away. One that could not be kept has
    // none: it serves the journey that obtained it.
    if (!config.currentPciToken.empty() && (config.pciTimer.isArmed() || state_->verifiedBySMS)) return false;
    state_->viewToShowAfterFaceId = journey_.host;
    recovery_.underWay = AuthenticateBiometric::runGate(
        config, [weak = weak_from_this()](AuthenticateBiometric::Outcome outcome) {
            const auto self = weak.lock();
            if (!self) return;
            switch (outcome) {
                case AuthenticateBiometric::Outcome::authenticated:
                    self->doAppearGuts();
                    break;
                case AuthenticateBiometric::Outcome::noStoredToken:
                    self->verifyBySMS(readFromKeychainFailed);
                    break;
                // A person who cannot or will not show a finger is verified by SMS.
                case AuthenticateBiometric::Outcome::notAuthenticated:
                    self->verifyBySMS({});
                    break;
                case AuthenticateBiometric::Outcome::cannotEvaluate:
                    self->doAppearGuts();
                    break;
            }
        });
    return true;
}

void AppearStruct::doAppearGuts() {
    recovery_.underWay = doGetCardStatus(state_, [weak = weak_from_this()](const KorvaneRetStruct& result) {
        const auto self = weak.lock();
        if (!self) return;
        if (result.error) {
            self->routeFailure(result);
        } else if (self->journey_.details) {
            self->fetchDetails();
        } else {
            self->finish(self->journey_.firstView(*self->state_));
        }
    });
}

void AppearStruct::fetchDetails() {
    recovery_.underWay = journey_.details(state_, [weak = weak_from_this()](const KorvaneRetStruct& result) {
        const auto self = weak.lock();
        if (!self) return;
        if (result.error) {
            self->handleCardImageError(result);
        } else {
            self->readPicture();
        }
    });
}

void AppearStruct::readPicture() {
    recovery_.underWay = readCardPicture(state_, [weak = weak_from_this()] {
        if (const auto self = weak.lock()) self->finish(self->journey_.firstView(*self->state_));
    });
}

void AppearStruct::handleCardImageError(const KorvaneRetStruct& result) {
    if (!viewToShow.empty()) {
        log("already got viewToShow in handleCardImageError");
        return;
    }
    routeFailure(result);
}

void AppearStruct::routeFailure(const KorvaneRetStruct& result) {
    if (isServerErrorOnEmptyToken(result, *state_)) {
        log({"doAppearGuts - ", inClear(journey_.name),
             " - Unexpected 500 server error on empty PCI Token - expecting 400 with Invalid Token error"});
        log("Forcing SMSExplainView");
        verifyBySMS(result.errorMsg);
        return;
    }
    leadOn(*state_, result, shared_from_this(), recovery_,
           {.verifyBySMS = [this](std::string_view matched) { verifyBySMS(matched); },
            .runAgain =
                [this](std::string_view reason) {
                    log({inClear(reason), ": Got new iv -- re-calling doAppearGuts -- ",
                         inClear(journey_.name)});
                    doAppearGuts();
                },
            .giveUp = [this] { fail(); }});
}

void AppearStruct::verifyBySMS(std::string_view matched) {
    if (!matched.empty()) log(inClear(matched));
    state_->viewToShowAfterSMSVerify = journey_.host;
    finish(view::SMSExplainView);
}

void AppearStruct::fail() {
    toastMsgId = "errors.generic.api";
    showToast = true;
    finish(view::UhOhTryAgainView);
}

void AppearStruct::finish(std::string_view viewName) {
    viewToShow = viewName;
    showSpinner = false;
    log({"viewToShow: ", inClear(viewToShow)});
    const auto self = shared_from_this();  // the host may start anew and let go of this one
    decided_();
}

}  // namespace korvane
