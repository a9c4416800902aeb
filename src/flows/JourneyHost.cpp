// SPDX-License-Identifier: Apache-2.0
#include "flows/JourneyHost.h"

#include <string>
#include <utility>

#include "flows/ActivationStartPage.h"
#include "flows/NavigationStack.h"
#include "flows/ViewNames.h"
#include "flows/ViewTables.h"
#include "platform/Log.h"
#include "sdk/SdkConfig.h"

namespace korvane {
namespace {

/// The card's status, cleared as it is read: a second reader finds "".
std::string takeCardStatus() {
    return std::exchange(SdkConfig::sharedInstance().decCardStatus, {});
}

std::string_view firstSetPinView() {
    const bool physical = SdkConfig::sharedInstance().currentCardType == eKorvaneCardType::physical;
    return takeCardStatus() == "P2" && physical ? view::CardIsNotYetActivatedView : view::EnterCardPINView;
}

std::string_view firstActivationView() {
    const std::string status = takeCardStatus();
    return status == "A1" || status == "BT" ? view::CardAlreadyActivatedView
                                            : view::ActivateCardAndSetPIN_NoNav;
}

std::shared_ptr<Screen> makeActivationStartPage(const std::shared_ptr<NavigationStack>& stack) {
    return std::make_shared<ActivationStartPage>(stack);
}

std::string_view firstCardImageView() {
    return view::CardImage_NoNav;
}

}  // namespace

namespace journey {

const JourneyHost::Kind setPIN{table::setPIN, view::SetPIN_NoNav, "SetPinAppearStruct", firstSetPinView,
                               true};
const JourneyHost::Kind setPIN_NoNav{table::setPIN_NoNav, view::SetPIN_NoNav, "SetPinAppearStruct",
                                     firstSetPinView, true};
const JourneyHost::Kind activateCardAndSetPIN{table::activateCardAndSetPIN,
                                              view::ActivateCardAndSetPIN_NoNav,
                                              "ActivateAppearStruct",
                                              firstActivationView,
                                              false,
                                              makeActivationStartPage};
const JourneyHost::Kind activateCardAndSetPIN_NoNav{table::activateCardAndSetPIN_NoNav,
                                                    view::ActivateCardAndSetPIN_NoNav,
                                                    "ActivateAppearStruct",
                                                    firstActivationView,
                                                    false,
                                                    makeActivationStartPage};

const JourneyHost::Kind getCardImage{table::getCardImage, view::CardImage_NoNav, "CardImageAppearStruct",
                                     firstCardImageView, false};

}  // namespace journey

JourneyHost::JourneyHost(std::shared_ptr<NavigationStack> stack, const Kind& kind)
    : ViewHost(std::move(stack), kind.table), kind_(kind) {}

void JourneyHost::onAppear() {
    log({".onAppear in ", viewName()});
    // Said each time the host comes into view: a journey that stood on top of it may have said otherwise.
    SdkConfig::sharedInstance().setPinOnly = kind_.setPinOnly;
    if (!appearStruct_) startDecision();
}

void JourneyHost::show(std::string_view viewName) {
    if (viewName != kind_.noNavName) {
        ViewHost::show(viewName);
        return;
    }
    log({".onAppear in ", viewName});
    showNothing();
    startDecision();
}

void JourneyHost::startDecision() {
    appearStruct_ = std::make_shared<AppearStruct>(
        AppearStruct::Journey{kind_.appearName, kind_.noNavName, kind_.firstView}, [weak = weak(this)] {
            if (const auto self = weak.lock()) self->decided();
        });
    appearStruct_->doAppear();
    changed();
}

void JourneyHost::decided() {
    if (appearStruct_->showToast) stack().showToast(appearStruct_->toastMsgId);
    const std::string viewName = appearStruct_->viewToShow;
    if (viewName == kind_.noNavName && kind_.startPage) {
        showScreen(viewName, kind_.startPage(sharedStack()));
    } else {
        ViewHost::show(viewName);
    }
}

void JourneyHost::describeContent(ScreenSnapshot& snapshot) const {
    ViewHost::describeContent(snapshot);
    snapshot.spinner = appearStruct_ && appearStruct_->showSpinner;
    snapshot.state.push_back({"showSpinner", snapshot.spinner});
    snapshot.state.push_back({"didCallAPI", appearStruct_ && appearStruct_->didCallAPI});
}

}  // namespace korvane
