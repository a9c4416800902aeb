// SPDX-License-Identifier: Apache-2.0
#include "flows/EnterCardPINView.h"

#include <utility>

#include "flows/ViewHost.h"
#include "flows/ViewNames.h"
#include "flows/ViewTables.h"

namespace korvane {

EnterCardPINView::EnterCardPINView(std::shared_ptr<NavigationStack> stack)
    : Screen(std::move(stack), view::EnterCardPINView),
      passCode_(KorvanePassCodeViewPIN("sdk.setpin.input")),
      continue_(
          "sdk.setpin.button", [this] { return makeNext(); },
          [this](const KorvaneNavigationToken& token) {
              const bool weak = isWeakPIN(passCode_.inputModel().passCodeString);
              viewToShow_ = weak ? view::YouCanDoBetterView : view::ConfirmCardPINView;
              token();
          }) {}

std::shared_ptr<Screen> EnterCardPINView::makeNext() {
    const auto next = std::make_shared<MultiView>(sharedStack(), table::enterCardPINMultiView,
                                                  ScreenArguments{passCode_.inputModel().passCodeString});
    next->show(viewToShow_);
    return next;
}

void EnterCardPINView::onAppear() {
    // Back from the warning the entry is kept, but the next digit begins another PIN.
    if (viewToShow_ == view::YouCanDoBetterView) passCode_.startOverOnNextInsert();
}

void EnterCardPINView::showBottomSheet(bool shown) {
    bottomSheetShown_ = shown;
    changed();
}

std::vector<Screen::ScreenControl> EnterCardPINView::controls() {
    if (bottomSheetShown_) {
        return {button("sdk.setpin.fourdigits.info.button", true, [this] { showBottomSheet(false); })};
    }
    return {back(),
            {{"sdk.setpin.fourdigits", ControlKind::row, true}, [this] { showBottomSheet(true); }},
            {{passCode_.id(), ControlKind::passcode, true}, nullptr},
            button(continue_.content(), passCode_.inputModel().isValid,
                   [this] { continue_.tap(*this, stack()); })};
}

void EnterCardPINView::describeContent(ScreenSnapshot& snapshot) const {
    snapshot.title = "sdk.setpin.header";
    if (bottomSheetShown_)
        snapshot.sheet = Sheet{"sdk.setpin.fourdigits.info", "sdk.setpin.fourdigits.info.button"};
    snapshot.state.push_back({"enableContinue", passCode_.inputModel().isValid});
    snapshot.state.push_back({"bottomSheetShown", bottomSheetShown_});
    snapshot.state.push_back({"viewToShow", std::string{viewToShow_}});
}

}  // namespace korvane
