// SPDX-License-Identifier: Apache-2.0
#include "flows/JourneyHost.h"

#include <string>
#include <utility>

#include "flows/ActivationStartPage.h"
#include "flows/CardDetails.h"
#include "flows/CardViewer.h"
#include "flows/NavigationStack.h"
#include "flows/ViewNames.h"
#include "flows/ViewTables.h"
#include "operations/Operations.h"
#include "platform/Log.h"
#include "sdk/JourneyState.h"

namespace korvane {
namespace {

std::string_view firstSetPinView(JourneyState& state) {
    const bool physical = state.currentCardType == eKorvaneCardType::physical;
    return takeCardStatus(state) == "P2" && physical ? view::CardIsNotYetActivatedView
                                                     : view::EnterCardPINView;
}

std::string_view firstActivationView(JourneyState& state) {
    const std::string status = takeCardStatus(state);
    return status == "A1" || status == "BT" ? view::CardAlreadyActivatedView
                                            : view::ActivateCardAndSetPIN_NoNav;
}

template <class Page>
std::shared_ptr<Screen> makeStartPage(const std::shared_ptr<NavigationStack>& stack) {
    return std::make_shared<Page>(stack);
}

}  // namespace

namespace journey {
namespace {

// Each journey comes twice: by itself, and inside another one's stack.

constexpr JourneyHost::Kind setPINIn(const ViewTable& table) {
    return {.table = table,
            .noNavName = view::SetPIN_NoNav,
            .appearName = "SetPinAppearStruct",
            .firstView = firstSetPinView,
            .setPinOnly = true};
}

constexpr JourneyHost::Kind activationIn(const ViewTable& table) {
    return {.table = table,
            .noNavName = view::ActivateCardAndSetPIN_NoNav,
            .appearName = "ActivateAppearStruct",
            .firstView = firstActivationView,
            .startPage = makeStartPage<ActivationStartPage>,
            .printsCardIds = true};
}

constexpr JourneyHost::Kind cardViewerIn(const ViewTable& table) {
    return {.table = table,
            .noNavName = view::CardImage_NoNav,
            .appearName = "CardImageAppearStruct",
            .firstView = [](JourneyState&) { return view::CardImage_NoNav; },
            .startPage = makeStartPage<CardViewer>,
            .details = doCardImage,
            .consoleName = "GetCardImage_NoNav",  // not its name (deliberate)
            .printsCardIds = true};
}

}  // namespace

const JourneyHost::Kind setPIN = setPINIn(table::setPIN);
const JourneyHost::Kind setPIN_NoNav = setPINIn(table::setPIN_NoNav);
const JourneyHost::Kind activateCardAndSetPIN = activationIn(table::activateCardAndSetPIN);
const JourneyHost::Kind activateCardAndSetPIN_NoNav = activationIn(table::activateCardAndSetPIN_NoNav);
const JourneyHost::Kind getCardImage = cardViewerIn(table::getCardImage);
const JourneyHost::Kind cardImage_NoNav = cardViewerIn(table::cardImage_NoNav);

}  // namespace journey

JourneyHost::JourneyHost(std::shared_ptr<NavigationStack> stack, const Kind& kind)
    : ViewHost(std::move(stack), kind.table), kind_(kind) {}

void JourneyHost::onAppear() {
    logAppearance(viewName());
    // Set each time the host comes into view: a journey nested above it may have set another value.
    state().setPinOnly = kind_.setPinOnly;
    if (!appearStruct_) startDecision();
}

void JourneyHost::logAppearance(std::string_view name) const {
    const bool isNoNav = name == kind_.noNavName;
    log({".onAppear in ", inClear(isNoNav ? kind_.consoleName : name)});
    if (!isNoNav || !kind_.printsCardIds) return;
    log({inClear(name), " - onAppear - SdkConfig.sharedInstance.cardId = ", state().sdk.cardId});
    log({inClear(name), " - onAppear - self.cardID = ", state().cardId});
}

void JourneyHost::show(std::string_view viewName) {
    if (viewName != kind_.noNavName) {
        ViewHost::show(viewName);
        return;
    }
    logAppearance(viewName);
    showNothing();
    startDecision();
}

void JourneyHost::startDecision() {
    appearStruct_ = std::make_shared<AppearStruct>(
        sharedState(),
        AppearStruct::Journey{kind_.appearName, kind_.noNavName, kind_.firstView, kind_.details},
        [weak = weak(this)] {
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
