// SPDX-License-Identifier: Apache-2.0
#include "flows/FreezeSwitch.h"

#include <string>
#include <utility>

#include "flows/FailureRoute.h"
#include "operations/Operations.h"
#include "platform/Log.h"
#include "sdk/SdkConfig.h"
#include "transport/IvAcquisition.h"

namespace korvane {

FreezeSwitch::FreezeSwitch(std::string_view cardStatus, std::function<void(Outcome)> ended)
    : isCardActivated_(cardStatus == "A1" || cardStatus == "BT"),
      isCardNotYetActivated_(cardStatus == "P2"),
      isCardFrozen_(cardStatus == "BT"),
      ended_(std::move(ended)) {}

std::optional<Popup> FreezeSwitch::question() const {
    if (!asking_) return std::nullopt;
    const std::string name = isCardFrozen_ ? "unFreeze" : "freeze";
    const std::string popup = "sdk.cardviewer.card.activateAndSetPin." + name + "CardPopup.";
    return Popup{popup + "header", popup + "body", popup + name + "Button", popup + "cancelButton"};
}

void FreezeSwitch::confirm() {
    asking_ = false;
    reEntrantSetCardStatus();
}

void FreezeSwitch::reEntrantSetCardStatus() {
    calling_ = true;
    const char* const unfrozen = isCardActivated_ ? "A1" : "P2";
    doSetCardStatus(isCardFrozen_ ? unfrozen : "BT",
                    [weak = weak_from_this()](const KorvaneRetStruct& result) {
                        if (const auto self = weak.lock()) self->answered(result);
                    });
}

void FreezeSwitch::answered(const KorvaneRetStruct& result) {
    if (!result.error) {
        isCardFrozen_ = !isCardFrozen_;
        end(Outcome::done);
        return;
    }
    if (isServerErrorOnEmptyToken(result, SdkConfig::sharedInstance().currentPciToken)) {
        end(Outcome::verifyBySMS);
        return;
    }
    switch (const FailureRoute route = routeOf(result); route.road) {
        case FailureRoute::Road::verifyBySMS:
            log(inClear(route.matched));
            end(Outcome::verifyBySMS);
            break;
        case FailureRoute::Road::ivExpired:
        case FailureRoute::Road::ivInvalid:
            renewIv();
            break;
        case FailureRoute::Road::errorPage:
            end(Outcome::failed);
            break;
    }
}

void FreezeSwitch::renewIv() {
    // Without limit, as long as the service refuses and the host supplies (deliberate).
    requestIv([weak = weak_from_this()](const auto&, const auto& ivId, const auto& ivBytes) {
        const auto self = weak.lock();
        if (!self) return;
        if (!ivId || !ivBytes) {
            self->end(Outcome::failed);
            return;
        }
        log({"Success getting new iV - re-calling reEntrantSetCardStatus",
             inClear(self->isCardFrozen_ ? "UnFreezeGuts" : "FreezeGuts")});
        self->reEntrantSetCardStatus();
    });
}

void FreezeSwitch::end(Outcome outcome) {
    calling_ = false;
    ended_(outcome);
}

}  // namespace korvane
