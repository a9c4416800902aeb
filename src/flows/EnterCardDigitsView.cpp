// SPDX-License-Identifier: Apache-2.0
#include "flows/EnterCardDigitsView.h"

#include <utility>

#include "base/Secret.h"
#include "flows/NavigationStack.h"
#include "flows/ScreenFactory.h"
#include "flows/ViewNames.h"
#include "sdk/JourneyState.h"

namespace korvane {

const EnterCardDigitsView::Row EnterCardDigitsView::lastFour{
    .view = view::EnterCardLastFourView,
    .title = "sdk.activatecard.lastfourdigits.header",
    .body = "",
    .button = "sdk.activatecard.lastfourdigits.button",
    .makeInput = [] { return KorvanePassCodeViewLastFour("sdk.activatecard.lastfourdigits.input"); },
    .field = &JourneyState::enteredLastFour,
    .next = view::EnterCardCVVView,
};

const EnterCardDigitsView::Row EnterCardDigitsView::cvv{
    .view = view::EnterCardCVVView,
    .title = "sdk.activatecard.cvv.header",
    .body = "sdk.activatecard.cvv.subheader",
    .button = "sdk.activatecard.cvv.button",
    .makeInput = [] { return KorvanePassCodeViewCVV("sdk.activatecard.cvv.input"); },
    .field = &JourneyState::enteredCvv,
    .next = view::EnterCardPINView,
};

EnterCardDigitsView::EnterCardDigitsView(std::shared_ptr<NavigationStack> stack, const Row& row)
    : Screen(std::move(stack), row.view),
      row_(row),
      passCode_(row.makeInput()),
      continue_(
          row.button, [this] { return makeScreen(sharedStack(), row_.next, ScreenArguments{}); },
          [this](const KorvaneNavigationToken& token) {
              state().*row_.field = passCode_.inputModel().passCodeString;
              token();
          }) {}

EnterCardDigitsView::~EnterCardDigitsView() {
    // It is there as long as the journey may still submit.
    wipe(state().*row_.field);
}

std::vector<Screen::ScreenControl> EnterCardDigitsView::controls() {
    return {back(),
            {{passCode_.id(), ControlKind::passcode, true}, nullptr},
            button(continue_.content(), passCode_.inputModel().isValid,
                   [this] { continue_.tap(*this, stack()); })};
}

void EnterCardDigitsView::describeContent(ScreenSnapshot& snapshot) const {
    snapshot.title = row_.title;
    if (!row_.body.empty()) snapshot.body = {std::string{row_.body}};
}

}  // namespace korvane
