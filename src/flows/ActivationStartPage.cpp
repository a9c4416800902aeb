// SPDX-License-Identifier: Apache-2.0
#include "flows/ActivationStartPage.h"

#include <utility>

#include "flows/CloseJourney.h"
#include "flows/ViewHost.h"
#include "flows/ViewNames.h"
#include "flows/ViewTables.h"
#include "sdk/JourneyState.h"

namespace korvane {

/// A physical card proves possession by what is printed on it; the others go straight to the PIN.
std::string_view firstActivationInput(const JourneyState& state) {
    const eKorvaneCardType type = state.currentCardType;
    const bool nothingPrinted = type == eKorvaneCardType::virtual_ || type == eKorvaneCardType::wearable;
    return nothingPrinted ? view::EnterCardPINView : view::EnterCardLastFourView;
}

ActivationStartPage::ActivationStartPage(std::shared_ptr<NavigationStack> stack)
    : Screen(std::move(stack), view::ActivateCardAndSetPIN_NoNav),
      start_(
          "sdk.cardarrived.start",
          [this] {
              auto next = std::make_shared<MultiView>(sharedStack(), table::activateCardAndSetPINMultiView);
              next->show(firstActivationInput(state()));
              return next;
          },
          [](const KorvaneNavigationToken& token) { token(); }) {}

std::vector<Screen::ScreenControl> ActivationStartPage::controls() {
    return {{{"xmark", ControlKind::close, true}, [this] { closeJourney(state(), CloseResult::canceled); }},
            button(start_.content(), true, [this] { start_.tap(*this, stack()); })};
}

void ActivationStartPage::describeContent(ScreenSnapshot& snapshot) const {
    snapshot.image = "cards_activate";
    snapshot.title = "sdk.cardarrived.header";
    snapshot.body = {"sdk.cardarrived.subheader"};
}

}  // namespace korvane
