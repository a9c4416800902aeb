// SPDX-License-Identifier: Apache-2.0
#include "flows/AppearStruct.h"

#include <utility>

#include "custody/AuthenticateBiometric.h"
#include "flows/FailureRoute.h"
#include "flows/ViewNames.h"
#include "platform/Log.h"
#include "sdk/SdkConfig.h"
#include "transport/IvAcquisition.h"

namespace korvane {

AppearStruct::AppearStruct(Journey journey, std::function<void()> decided)
    : journey_(std::move(journey)), decided_(std::move(decided)) {}

AppearStruct::~AppearStruct() {
    // Details that nobody is left to show must not be stored, least of all over those of another card.
    if (details_) details_->cancel();
}

void AppearStruct::doAppear() {
    if (didCallAPI) return;
    didCallAPI = true;
    showSpinner = true;
    log({"Top of doAppear()  -- ", inClear(journey_.name)});
    if (!startGate()) doAppearGuts();
}

bool AppearStruct::startGate() {
    SdkConfig& config = SdkConfig::sharedInstance();
    // A token that is still in memory needs no check: the timer takes it away when its time is up.
    if (!config.useBiometrics || !config.currentPciToken.empty()) return false;
    config.viewToShowAfterFaceId = journey_.host;
    gate_ = AuthenticateBiometric::runGate([weak = weak_from_this()](AuthenticateBiometric::Outcome outcome) {
        const auto self = weak.lock();
        if (!self) return;
        self->gate_.reset();
        switch (outcome) {
            case AuthenticateBiometric::Outcome::authenticated:
                self->doAppearGuts();
                break;
            case AuthenticateBiometric::Outcome::noStoredToken:
                self->verifyBySMS(readFromKeychainFailed);
                break;
            // Whoever cannot or will not show a finger proves themselves by SMS.
            case AuthenticateBiometric::Outcome::notAuthenticated:
                self->verifyBySMS("evaluate policy 'success' is false");
                break;
        }
    });
    return gate_ != nullptr;
}

void AppearStruct::doAppearGuts() {
    doGetCardStatus([weak = weak_from_this()](const KorvaneRetStruct& result) {
        const auto self = weak.lock();
        if (!self) return;
        if (result.error) {
            self->routeFailure(result);
        } else if (self->journey_.details) {
            self->fetchDetails();
        } else {
            self->finish(self->journey_.firstView());
        }
    });
}

void AppearStruct::fetchDetails() {
    details_ = journey_.details([weak = weak_from_this()](const KorvaneRetStruct& result) {
        const auto self = weak.lock();
        if (!self) return;
        self->details_.reset();
        if (result.error) {
            self->handleCardImageError(result);
        } else {
            self->finish(self->journey_.firstView());
        }
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
    if (isServerErrorOnEmptyToken(result, SdkConfig::sharedInstance().currentPciToken)) {
        log({"doAppearGuts - ", inClear(journey_.name),
             " - Unexpected 500 server error on empty PCI Token - expecting 400 with Invalid Token error"});
        log("Forcing SMSExplainView");
        verifyBySMS(result.errorMsg);
        return;
    }
    const FailureRoute route = routeOf(result);
    switch (route.road) {
        case FailureRoute::Road::verifyBySMS:
            verifyBySMS(route.matched);
            break;
        case FailureRoute::Road::ivExpired:
            renewIv("iv expired");
            break;
        case FailureRoute::Road::ivInvalid:
            renewIv("iv invalid");
            break;
        case FailureRoute::Road::errorPage:
            fail();
            break;
    }
}

void AppearStruct::verifyBySMS(std::string_view reason) {
    log(inClear(reason));
    SdkConfig::sharedInstance().viewToShowAfterSMSVerify = journey_.host;
    finish(view::SMSExplainView);
}

void AppearStruct::renewIv(std::string_view reason) {
    // Without limit, as long as the service refuses and the host supplies (deliberate).
    requestIv([weak = weak_from_this(), reason](const auto&, const auto& ivId, const auto& ivBytes) {
        const auto self = weak.lock();
        if (!self) return;
        if (!ivId || !ivBytes) {
            self->fail();
            return;
        }
        log({inClear(reason), ": Got new iv -- re-calling doAppearGuts -- ", inClear(self->journey_.name)});
        self->doAppearGuts();
    });
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
