// SPDX-License-Identifier: Apache-2.0
#include "flows/ResultPage.h"

#include <algorithm>
#include <utility>

#include "flows/NavigationStack.h"
#include "flows/ScreenFactory.h"
#include "flows/ViewNames.h"
#include "sdk/JourneyState.h"

namespace korvane {

std::span<const ResultPage::Row> ResultPage::rows() {
    static const std::vector<Row> all{
        {.view = view::UhOhTryAgainView,
         .image = "caption_exclamation",
         .title = "sdk.errorPage.tryagain.header",
         .body = {"sdk.errorPage.tryagain.subheader.one", "sdk.errorPage.tryagain.subheader.two"},
         .buttons = {{"sdk.errorPage.tryagain.button", Does::close, CloseResult::failure}}},
        {.view = view::UhOhTryAgainWithErrorMsgView,
         .image = "caption_exclamation",
         .title = "sdk.registration.errorPage.header",
         .body = {"sdk.registration.errorPage.body"},
         .buttons = {{"sdk.registration.errorPage.button", Does::goBack}}},
        {.view = view::UhOhContactSupportView,
         .image = "caption_exclamation",
         .title = "sdk.errorPage.contactSupport.header",
         .body = {"sdk.errorPage.contactSupport.subheader.one", "sdk.errorPage.contactSupport.subheader.two"},
         .buttons = {{"sdk.errorPage.contactSupport.button.one", Does::close, CloseResult::failure}}},
        {.view = view::SomethingDoesntMatchView,
         .image = "caption_exclamation",
         .title = "sdk.somethingdoesntmatch.header",
         .body = {"sdk.somethingdoesntmatch.subheader"},
         .buttons = {{"sdk.somethingdoesntmatch.button", Does::goBack}}},
        {.view = view::YouCanDoBetterView,
         .image = "caption_exclamation",
         .title = "sdk.youcandobetter.header",
         .body = {"sdk.youcandobetter.subheader"},
         .buttons = {{"sdk.youcandobetter.button", Does::goBack}},
         .bullets = {{"xmark.octagon", "sdk.youcandobetter.bullet.one"},
                     {"xmark.octagon", "sdk.youcandobetter.bullet.two"},
                     {"checkmark.circle", "sdk.youcandobetter.bullet.three"}}},
        {.view = view::SuccessPinSetView,
         .image = "success",
         .title = "sdk.success.setpin.header",
         .body = {"sdk.success.setpin.subheader"},
         .buttons = {{"sdk.success.setpin.button", Does::close, CloseResult::success}}},
        {.view = view::SuccessCardActivatedAndPinSetView,
         .image = "success",
         .title = "sdk.success.cardActivatedAndSetPin.header",
         .body = {"sdk.success.cardActivatedAndSetPin.subheader"},
         .buttons = {{"sdk.success.cardActivatedAndSetPin.button", Does::close, CloseResult::success}}},
        {.view = view::CardIsNotYetActivatedView,
         .image = "cards_activate",
         .title = "sdk.cardnotactivated.header",
         .body = {"sdk.cardnotactivated.subheader"},
         .buttons = {{"sdk.cardnotactivated.button.one", Does::activateCard},
                     {"sdk.cardnotactivated.button.two", Does::close, CloseResult::canceled}}},
        {.view = view::CardAlreadyActivatedView,
         .image = "",
         .title = "sdk.cardactivated.header",
         .body = {"sdk.cardactivated.subheader"},
         .buttons = {{"sdk.cardactivated.button.one", Does::close, CloseResult::canceled},
                     {"sdk.cardactivated.button.two", Does::setPinOnly}}},
    };
    return all;
}

const ResultPage::Row* ResultPage::find(std::string_view viewName) {
    const auto all = rows();
    const auto row =
        std::find_if(all.begin(), all.end(), [&](const Row& each) { return each.view == viewName; });
    return row == all.end() ? nullptr : &*row;
}

ResultPage::ResultPage(std::shared_ptr<NavigationStack> stack, const Row& row)
    : Screen(std::move(stack), row.view), row_(row) {}

void ResultPage::act(const Button& button) {
    switch (button.does) {
        case Does::goBack:
            dismiss();
            break;
        case Does::close:
            closeJourney(state(), button.result);
            break;
        case Does::activateCard:
            stack().push(makeScreen(sharedStack(), view::ActivateCardAndSetPIN_NoNav, ScreenArguments{}));
            break;
        case Does::setPinOnly:
            state().setPinOnly = true;
            stack().push(makeScreen(sharedStack(), view::EnterCardPINView, ScreenArguments{}));
            break;
    }
}

CloseResult ResultPage::closeResult() const {
    const auto closing = std::find_if(row_.buttons.begin(), row_.buttons.end(),
                                      [](const Button& each) { return each.does == Does::close; });
    return closing == row_.buttons.end() ? CloseResult::canceled : closing->result;
}

std::vector<Screen::ScreenControl> ResultPage::controls() {
    std::vector<ScreenControl> controls;
    for (const Button& each : row_.buttons)
        controls.push_back(button(each.id, true, [this, &each] { act(each); }));
    return controls;
}

void ResultPage::describeContent(ScreenSnapshot& snapshot) const {
    snapshot.image = row_.image;
    snapshot.title = row_.title;
    snapshot.body.assign(row_.body.begin(), row_.body.end());
    for (const BulletRow& bullet : row_.bullets) {
        snapshot.bullets.push_back({std::string{bullet.symbol}, std::string{bullet.text}});
    }
}

}  // namespace korvane
