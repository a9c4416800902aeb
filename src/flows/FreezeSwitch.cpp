// SPDX-License-Identifier: Apache-2.0
#include "flows/FreezeSwitch.h"

#include <string>
#include <utility>

#include "platform/Log.h"

namespace korvane {

FreezeSwitch::FreezeSwitch(StatePtr state, std::string_view cardStatus, std::function<void(Outcome)> ended)
    : state_(std::move(state)),
      isCardActivated_(cardStatus == "A1" || cardStatus == "BT"),
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
    recovery_.underWay = doSetCardStatus(state_, isCardFrozen_ ? unfrozen : "BT",
                                         [weak = weak_from_this()](const KorvaneRetStruct& result) {
                                             if (const auto self = weak.lock()) self->answered(result);
                                         });
}

void FreezeSwitch::answered(const KorvaneRetStruct& result) {
    if (!result.error) {
        recovery_.backoff.reset();
        isCardFrozen_ = !isCardFrozen_;
        return end(Outcome::done);
    }
    if (isServerErrorOnEmptyToken(result, *state_)) return end(Outcome::verifyBySMS);
    leadOn(*state_, result, shared_from_this(), recovery_,
           {.verifyBySMS =
                [this](std::string_view matched) {
                    log(inClear(matched));
                    end(Outcome::verifyBySMS);
                },
            .runAgain =
                [this](std::string_view) {
                    log({"Success getting new iV - re-calling reEntrantSetCardStatus",
                         inClear(isCardFrozen_ ? "UnFreezeGuts" : "FreezeGuts")});
                    reEntrantSetCardStatus();
                },
            .giveUp = [this] { end(Outcome::failed); }});
}

void FreezeSwitch::end(Outcome outcome) {
    calling_ = false;
    if (const auto ended = ended_) ended(outcome);
}

}  // namespace korvane
