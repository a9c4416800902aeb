// SPDX-License-Identifier: Apache-2.0
#include "flows/CardViewer.h"

#include <korvane/platform/Ports.h>

#include <chrono>
#include <utility>

#include "base/Text.h"
#include "flows/ActivationStartPage.h"
#include "flows/CloseJourney.h"
#include "flows/NavigationStack.h"
#include "flows/ScreenFactory.h"
#include "flows/ViewNames.h"
#include "flows/ViewTables.h"
#include "sdk/JourneyState.h"

namespace korvane {
namespace {

constexpr std::chrono::seconds revealTime{30};

constexpr std::string_view revealControl = "sdk.cardviewer.device.details.reveal";
constexpr std::string_view freezeControl = "sdk.cardviewer.card.activateAndSetPin.freezeMyCard";

}  // namespace

CardViewer::CardViewer(std::shared_ptr<NavigationStack> stack)
    : Screen(std::move(stack), view::CardImage_NoNav),
      picture_(state().cardPicture),
      type_(state().currentCardType),
      cardholderName_(cardholderName(state())),
      disclosureText_(cardDisclosure(state())),
      activate_(
          "sdk.cardviewer.activateAndSetPin.onCardButton",
          [this] {
              auto next = std::make_shared<MultiView>(sharedStack(), table::cardImageActivateMultiView);
              next->show(viewToShowNext_);
              return next;
          },
          [this](const KorvaneNavigationToken& token) {
              viewToShowNext_ = firstActivationInput(state());
              hideSensitive();
              token();
          }),
      freeze_(
          std::make_shared<FreezeSwitch>(sharedState(), takeCardStatus(state()),
                                         [this](FreezeSwitch::Outcome outcome) { freezeEnded(outcome); })) {}

CardViewer::~CardViewer() {
    freeze_->detach();
    state().wipeCardDetails();
}

void CardViewer::onAppear() {
    if (std::exchange(failuresTold_, true)) return;
    std::vector<std::string> failures;
    if (!picture_.failure.empty()) failures.push_back(picture_.failure);
    if (!state().decodedDisclosuresStruct) failures.emplace_back("errors.decodedDisclosureStructIsNil");
    if (!failures.empty()) stack().showToasts(std::move(failures));
}

void CardViewer::resumeAfterSMSVerify() {
    freeze_->callAgain();
}

std::vector<CardViewer::Detail> CardViewer::details() const {
    const JourneyState& card = state();
    return {{"sdk.cardviewer.device.details.cardholderName", cardholderName_},
            {"sdk.cardviewer.device.details.cardNumber", card.decPan, &card.decMaskedPan},
            {"sdk.cardviewer.device.details.expirationDate", card.decExpiryDate},
            {"sdk.cardviewer.device.details.cvv", card.decCvv, &card.decMaskedCvv}};
}

void CardViewer::toggleReveal() {
    if (revealed_) {
        hideSensitive();
        return;
    }
    completed_ = true;
    revealed_ = ports().timers->start(revealTime, [this] { hideSensitive(); });
    changed();
}

void CardViewer::hideSensitive() {
    if (!revealed_) return;
    revealed_.reset();
    changed();
}

void CardViewer::copy(const std::string& value) {
    if (!copied_.copy(value)) return;
    completed_ = true;
    stack().showToast("sdk.copiedToClipboard");
}

void CardViewer::close() {
    hideSensitive();
    closeJourney(state(), closeResult());
}

void CardViewer::freezeEnded(FreezeSwitch::Outcome outcome) {
    const auto self = shared_from_this();
    switch (outcome) {
        case FreezeSwitch::Outcome::done:
            completed_ = true;
            break;
        case FreezeSwitch::Outcome::failed:
            stack().showToast("errors.generic.api");
            break;
        case FreezeSwitch::Outcome::verifyBySMS:
            hideSensitive();
            state().viewToShowAfterSMSVerify = view::CardImage_NoNav;
            stack().push(makeAutoNavMultiView(sharedStack(), view::SMSExplainView));
            break;
    }
    changed();
}

bool CardViewer::offersActivation() const {
    // A frozen card shows that it is frozen; what else can be done with it comes after.
    return freeze_->isCardNotYetActivated() && !freeze_->isCardFrozen();
}

std::vector<Screen::ScreenControl> CardViewer::controls() {
    if (const auto popup = freeze_->question()) {
        const auto answer = [this](void (FreezeSwitch::*given)()) {
            return [this, given] {
                ((*freeze_).*given)();
                changed();
            };
        };
        return {button(popup->confirm, true, answer(&FreezeSwitch::confirm)),
                button(popup->cancel, true, answer(&FreezeSwitch::cancel))};
    }
    std::vector<ScreenControl> controls{{{"xmark", ControlKind::close, true}, [this] { close(); }}};
    if (offersActivation()) {
        controls.push_back(
            button(activate_.content(), !freeze_->isCalling(), [this] { activate_.tap(*this, stack()); }));
    }
    bool somethingMasked = false;
    for (const Detail& detail : details()) {
        somethingMasked |= detail.mask && !detail.value.empty();
        controls.push_back({{std::string{detail.id}, ControlKind::row, !detail.value.empty()},
                            [this, detail] { copy(detail.value); }});
    }
    controls.push_back(
        {{std::string{revealControl}, ControlKind::toggle, somethingMasked, revealed_ != nullptr},
         [this] { toggleReveal(); }});
    controls.push_back(
        {{std::string{freezeControl}, ControlKind::toggle, freeze_->canAsk(), freeze_->isCardFrozen()},
         [this] {
             freeze_->ask();
             changed();
         }});
    return controls;
}

CardFace CardViewer::face() const {
    CardFace face;
    face.image = picture_.image;
    face.decoded = picture_.decoded;
    face.name = cardName(state(), type_);
    if (equalIgnoringCase(state().decCardNetwork, "mastercard")) face.networkLogo = "mastercard_logo";
    face.activated = freeze_->isCardActivated();
    face.frozen = freeze_->isCardFrozen();
    // The two keys differ in their prefix (deliberate).
    if (face.frozen) {
        face.message = {"sdk.cardviewer.card.activateAndSetPin.onCardFrozenMessage.header",
                        "sdk.cardviewer.activateAndSetPin.onCardFrozenMessage.subheader"};
    }
    if (offersActivation()) face.button = activate_.content();
    return face;
}

void CardViewer::describeContent(ScreenSnapshot& snapshot) const {
    snapshot.card = face();
    snapshot.title = "sdk.cardviewer.device.details";
    snapshot.body = {"sdk.taptocopy"};
    for (const Detail& detail : details()) {
        const bool masked = !revealed_ && detail.mask && !detail.value.empty();
        snapshot.rows.push_back({.id = std::string{detail.id},
                                 .value = masked ? *detail.mask : detail.value,
                                 .masked = masked,
                                 .secret = detail.mask != nullptr,
                                 .copyable = !detail.value.empty()});
    }
    snapshot.popup = freeze_->question();
    snapshot.disclosureText = disclosureText_;
    snapshot.spinner = freeze_->isCalling();

    const bool asking = snapshot.popup.has_value();
    const bool frozen = freeze_->isCardFrozen();
    snapshot.state = {
        {"cardType", std::string{cardTypeCaseName(state().currentCardType)}},
        {"viewToShowNext", viewToShowNext_},
        {"showSpinner", snapshot.spinner},
        {"isCardActivated", freeze_->isCardActivated()},
        {"isCardFrozen", frozen},
        {"showToggleOff", !frozen},
        {"isCardFrozenShowToggleOff", asking && frozen},  // asked whether to lift the freeze
        {"isCardFrozenShowToggleOn", asking && !frozen},  // asked whether to freeze
        {"isWantingToListen", freeze_->canAsk()},
        {"isCardImageLoaded", picture_.image != nullptr},
        {"detailsRevealed", revealed_ != nullptr},
        {"disclosureText", disclosureText_},
    };
}

}  // namespace korvane
