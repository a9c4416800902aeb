// SPDX-License-Identifier: Apache-2.0
#include "tests/explorer/Invariants.h"

#include <algorithm>
#include <map>

#include "flows/ResultPage.h"
#include "flows/ViewNames.h"
#include "flows/ViewTables.h"

namespace korvane::explorer {
namespace {

constexpr const ViewTable* tables[] = {&table::setPIN,
                                       &table::setPIN_NoNav,
                                       &table::activateCardAndSetPIN,
                                       &table::activateCardAndSetPIN_NoNav,
                                       &table::getCardImage,
                                       &table::cardImage_NoNav,
                                       &table::enterCardPINMultiView,
                                       &table::autoNavMultiView,
                                       &table::activateCardAndSetPINMultiView,
                                       &table::cardImageActivateMultiView};

const ViewTable* tableOf(std::string_view host) {
    const auto found = std::ranges::find(tables, host, &ViewTable::host);
    return found == std::end(tables) ? nullptr : *found;
}

/// What a screen pushes: a view, or a multi view that shows one.
const std::multimap<std::string_view, std::string_view> pushes{
    {view::EnterCardPINView, view::EnterCardPINMultiView},
    {view::ConfirmCardPINView, view::AutoNavMultiView},
    {view::ActivateCardAndSetPIN_NoNav, view::ActivateCardAndSetPINMultiView},
    {view::CardImage_NoNav, view::CardImageActivateMultiView},
    {view::CardImage_NoNav, view::AutoNavMultiView},
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

std::set<std::string> allRowsAndViews() {
    std::set<std::string> all;
    for (const ViewTable* const each : tables) {
        for (const std::string_view view : each->views) {
            all.insert("row " + std::string{each->host} + " " + std::string{view});
            all.insert("view " + std::string{view});
        }
    }
    for (const ResultPage::Row& page : ResultPage::rows()) all.insert("view " + std::string{page.view});
    return all;
}

std::vector<std::string> rowsAndViews(const std::vector<std::string>& stack, std::string& complaint) {
    std::vector<std::string> met;
    bool isHost = true;  // a host stands at the root, and where a page pushes one
    for (std::size_t i = 0; i < stack.size(); ++i) {
        const std::string& from = stack[i];
        met.push_back("view " + from);
        if (i + 1 == stack.size()) break;
        const std::string& to = stack[i + 1];
        bool isListed = false, isPushed = false;
        const auto show = [&](const ViewTable* table) {
            if (!table || !table->lists(to)) return;
            isListed = true;
            met.push_back("row " + std::string{table->host} + " " + to);
        };
        if (isHost) show(tableOf(from));
        for (auto [push, end] = pushes.equal_range(from); push != end && !isHost; ++push) {
            isPushed |= push->second == to;
            if (push->second != to) show(tableOf(push->second));
        }
        if (!isListed && !isPushed) complaint = from + " shows " + to + ", which it does not list";
        isHost = isPushed && tableOf(to);
    }
    if (isHost && !stack.empty()) met.push_back("bare host " + stack.back());
    return met;
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
    const auto rows = rowsAndViews(now.stack, complaint);
    if (!complaint.empty()) return complaint;
    if (rows.back() == "bare host " + now.view && !now.spinner)
        return now.view + " shows nothing and decides nothing";
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
