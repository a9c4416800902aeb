// SPDX-License-Identifier: Apache-2.0
#include "tests/explorer/Invariants.h"

#include <algorithm>
#include <map>

#include "flows/ResultPage.h"
#include "flows/ViewNames.h"
#include "flows/ViewTables.h"

namespace korvane::explorer {
namespace {

const std::map<std::string_view, const ViewTable*> journeyHosts{
    {view::SetPIN, &table::setPIN},
    {view::SetPIN_NoNav, &table::setPIN_NoNav},
    {view::ActivateCardAndSetPIN, &table::activateCardAndSetPIN},
    {view::ActivateCardAndSetPIN_NoNav, &table::activateCardAndSetPIN_NoNav},
    {view::GetCardImage, &table::getCardImage},
    {view::CardImage_NoNav, &table::cardImage_NoNav},
};

/// Through which multi views a screen pushes others.
const std::multimap<std::string_view, const ViewTable*> pushesThrough{
    {view::EnterCardPINView, &table::enterCardPINMultiView},
    {view::ConfirmCardPINView, &table::autoNavMultiView},
    {view::ActivateCardAndSetPIN_NoNav, &table::activateCardAndSetPINMultiView},
    {view::CardImage_NoNav, &table::cardImageActivateMultiView},
    {view::CardImage_NoNav, &table::autoNavMultiView},
};

/// What a screen pushes without one.
const std::multimap<std::string_view, std::string_view> pushesItself{
    {view::EnterCardLastFourView, view::EnterCardCVVView},
    {view::EnterCardCVVView, view::EnterCardPINView},
    {view::SMSExplainView, view::EnterSMSCodeView},
    {view::SMSExplainView, view::UhOhTryAgainWithErrorMsgView},
    {view::EnterSMSCodeView, view::UhOhTryAgainWithErrorMsgView},
    {view::CardIsNotYetActivatedView, view::ActivateCardAndSetPIN_NoNav},
    {view::CardAlreadyActivatedView, view::EnterCardPINView},
};

/// What a control that ends the journey reports. The card viewer's depends on what was done.
const std::map<std::string, std::string> closing{
    {"sdk.success.setpin.button", "SUCCESS"},
    {"sdk.success.cardActivatedAndSetPin.button", "SUCCESS"},
    {"sdk.errorPage.tryagain.button", "FAILURE"},
    {"sdk.errorPage.contactSupport.button.one", "FAILURE"},
    {"sdk.cardnotactivated.button.two", "CANCELED"},
    {"sdk.cardactivated.button.one", "CANCELED"},
    {"xmark", "CANCELED"},
};

const std::set<std::string> goingBack{"back", "sdk.youcandobetter.button",
                                      "sdk.registration.errorPage.button", "sdk.somethingdoesntmatch.button"};

std::string wrongClose(const ScreenSnapshot& before, const Step& step, const World& world) {
    const auto& results = world.closedWith();
    const auto control = step.does == Step::Does::tap ? closing.find(step.text) : closing.end();
    if (control == closing.end()) return results.empty() ? "" : "closes without being told to";
    const bool succeeded = before.card && world.hasDoneSomething();
    const std::string expected = succeeded ? "SUCCESS" : control->second;
    if (results.size() != 1) return "closes " + std::to_string(results.size()) + " times at one tap";
    return results[0] == expected ? "" : "closes with " + results[0] + " instead of " + expected;
}

}  // namespace

std::set<TableRow> allTableRows() {
    std::set<TableRow> rows;
    for (const ViewTable* const each :
         {&table::setPIN, &table::setPIN_NoNav, &table::activateCardAndSetPIN,
          &table::activateCardAndSetPIN_NoNav, &table::getCardImage, &table::cardImage_NoNav,
          &table::enterCardPINMultiView, &table::autoNavMultiView, &table::activateCardAndSetPINMultiView,
          &table::cardImageActivateMultiView}) {
        for (const std::string_view view : each->views) rows.emplace(each->host, view);
    }
    return rows;
}

std::set<TableRow> rowsOf(const std::vector<std::string>& stack, std::string& complaint) {
    std::set<TableRow> rows;
    bool isHost = true;
    for (std::size_t i = 0; i + 1 < stack.size(); ++i) {
        const std::string& from = stack[i];
        const std::string& to = stack[i + 1];
        const ViewTable* lists = nullptr;
        if (isHost) {
            lists = journeyHosts.at(from);
            isHost = false;
        } else {
            const auto [first, last] = pushesItself.equal_range(from);
            if (std::any_of(first, last, [&](const auto& push) { return push.second == to; })) {
                isHost = journeyHosts.contains(to);
                continue;
            }
            for (auto [each, end] = pushesThrough.equal_range(from); each != end; ++each) {
                if (!lists || each->second->lists(to)) lists = each->second;
            }
        }
        if (lists && lists->lists(to)) {
            rows.emplace(lists->host, to);
        } else {
            complaint = from + " shows " + to + ", which it does not list";
        }
    }
    if (isHost) rows.emplace(stack.back(), "");
    return rows;
}

std::string wrongAfter(const ScreenSnapshot& before, const Step& step, const World& world) {
    if (!world.trouble().empty()) return world.trouble();
    if (std::string wrong = wrongClose(before, step, world); !wrong.empty()) return wrong;
    if (world.isClosed()) return {};

    const ScreenSnapshot now = world.screen();
    if (const std::string secret = world.shownSecret(); !secret.empty()) return "shows " + secret;
    if (world.holdsPin() && ResultPage::find(now.view) && now.view != view::UhOhTryAgainWithErrorMsgView)
        return "still holds the PIN on " + now.view;
    std::string complaint;
    const bool bareHost = rowsOf(now.stack, complaint).contains({now.view, ""});
    if (!complaint.empty()) return complaint;
    if (bareHost && !now.spinner) return now.view + " shows nothing and decides nothing";
    const bool enabled = std::any_of(now.controls.begin(), now.controls.end(),
                                     [](const Control& control) { return control.enabled; });
    // A host that lets go of the reply function never replies: what asked waits for good, as it must.
    if (!world.isAwaiting() && !world.hostLetGo()) {
        if (now.spinner) return "a spinner on " + now.view + ", and nothing is under way";
        if (!enabled) return "nothing can be done on " + now.view;
    }
    if (step.does == Step::Does::tap && goingBack.contains(step.text)) {
        const bool earlier = now.stack.size() < before.stack.size() &&
                             std::equal(now.stack.begin(), now.stack.end(), before.stack.begin());
        if (!earlier) return step.text + " leads from " + before.view + " to " + now.view;
    }
    if (now.depth > 10) return "the stack grows";
    return {};
}

}  // namespace korvane::explorer
