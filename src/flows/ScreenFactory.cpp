// SPDX-License-Identifier: Apache-2.0
#include "flows/ScreenFactory.h"

#include <array>

#include "flows/ConfirmCardPINView.h"
#include "flows/EnterCardDigitsView.h"
#include "flows/EnterCardPINView.h"
#include "flows/JourneyHost.h"
#include "flows/NavigationStack.h"
#include "flows/ResultPage.h"
#include "flows/SMSExplainView.h"
#include "flows/ViewNames.h"
#include "flows/ViewTables.h"
#include "sdk/JourneyState.h"

namespace korvane {
namespace {

using Stack = std::shared_ptr<NavigationStack>;

struct Maker {
    std::string_view view;
    std::shared_ptr<Screen> (*make)(const Stack&, const ScreenArguments&);
};

/// Shown anew after the SMS step, the confirm screen has no first entry: the pending PIN takes its place and
/// is submitted at once. Without either there is nothing to confirm, and the PIN is entered anew.
std::shared_ptr<Screen> makeConfirmCardPINView(const Stack& stack, const ScreenArguments& arguments) {
    const bool fresh = arguments.enteredPin.empty();
    const std::string& pin = fresh ? stack->state()->pendingPin : arguments.enteredPin;
    if (pin.empty()) return std::make_shared<EnterCardPINView>(stack);
    return std::make_shared<ConfirmCardPINView>(stack, pin, fresh);
}

template <class View>
std::shared_ptr<Screen> makeView(const Stack& stack, const ScreenArguments&) {
    return std::make_shared<View>(stack);
}

template <const JourneyHost::Kind& kind>
std::shared_ptr<Screen> makeHost(const Stack& stack, const ScreenArguments&) {
    return std::make_shared<JourneyHost>(stack, kind);
}

template <const EnterCardDigitsView::Row& row>
std::shared_ptr<Screen> makeDigits(const Stack& stack, const ScreenArguments&) {
    return std::make_shared<EnterCardDigitsView>(stack, row);
}

constexpr std::array<Maker, 8> makers{{
    {view::SMSExplainView, makeView<SMSExplainView>},
    {view::EnterCardPINView, makeView<EnterCardPINView>},
    {view::ConfirmCardPINView, makeConfirmCardPINView},
    {view::EnterCardLastFourView, makeDigits<EnterCardDigitsView::lastFour>},
    {view::EnterCardCVVView, makeDigits<EnterCardDigitsView::cvv>},
    {view::SetPIN_NoNav, makeHost<journey::setPIN_NoNav>},
    {view::ActivateCardAndSetPIN_NoNav, makeHost<journey::activateCardAndSetPIN_NoNav>},
    {view::CardImage_NoNav, makeHost<journey::cardImage_NoNav>},
}};

}  // namespace

std::shared_ptr<Screen> makeScreen(const Stack& stack, std::string_view viewName,
                                   const ScreenArguments& arguments) {
    for (const Maker& maker : makers) {
        if (maker.view == viewName) return maker.make(stack, arguments);
    }
    const ResultPage::Row* const row = ResultPage::find(viewName);
    return row ? std::make_shared<ResultPage>(stack, *row) : nullptr;
}

std::shared_ptr<Screen> makeAutoNavMultiView(const Stack& stack, std::string_view viewName) {
    const auto multiView = std::make_shared<MultiView>(stack, table::autoNavMultiView);
    multiView->show(viewName);
    return multiView;
}

}  // namespace korvane
