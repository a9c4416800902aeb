// SPDX-License-Identifier: Apache-2.0
#include "capi/SnapshotJson.h"
#include "flows/ResultPage.h"
#include "flows/ViewNames.h"
#include "flows/ViewTables.h"
#include "tests/explorer/World.h"

namespace korvane::explorer {
namespace {

using namespace table;
using namespace view;

constexpr const ViewTable* tables[] = {&setPIN,
                                       &setPIN_NoNav,
                                       &activateCardAndSetPIN,
                                       &activateCardAndSetPIN_NoNav,
                                       &getCardImage,
                                       &cardImage_NoNav,
                                       &enterCardPINMultiView,
                                       &confirmCardPINMultiView,
                                       &autoNavMultiView,
                                       &activateCardAndSetPINMultiView,
                                       &cardImageActivateMultiView};

const ViewTable* tableOf(std::string_view host) {
    const auto found = std::ranges::find(tables, host, &ViewTable::host);
    return found == std::end(tables) ? nullptr : *found;
}

/// What a screen pushes: a view, or a multi view that shows one.
const std::multimap<std::string_view, std::string_view> pushes{
    {EnterCardPINView, EnterCardPINMultiView},
    {ConfirmCardPINView, AutoNavMultiView},
    {ActivateCardAndSetPIN_NoNav, ActivateCardAndSetPINMultiView},
    {CardImage_NoNav, CardImageActivateMultiView},
    {CardImage_NoNav, AutoNavMultiView},
    {EnterCardLastFourView, EnterCardCVVView},
    {EnterCardCVVView, EnterCardPINView},
    {SMSExplainView, EnterSMSCodeView},
    {SMSExplainView, UhOhTryAgainWithErrorMsgView},
    {EnterSMSCodeView, UhOhTryAgainWithErrorMsgView},
    {CardIsNotYetActivatedView, ActivateCardAndSetPIN_NoNav},
    {CardAlreadyActivatedView, EnterCardPINView},
};

/// What a control reports that ends the journey (the card viewer's: unless something was done), or "" when it
/// leads back.
const std::map<std::string, std::string> leading{
    {"sdk.success.setpin.button", "SUCCESS"},
    {"sdk.success.cardActivatedAndSetPin.button", "SUCCESS"},
    {"sdk.errorPage.tryagain.button", "FAILURE"},
    {"sdk.cardnotactivated.button.two", "CANCELED"},
    {"sdk.cardactivated.button.one", "CANCELED"},
    {"xmark", "CANCELED"},
    {"back", ""},
    {"sdk.youcandobetter.button", ""},
    {"sdk.registration.errorPage.button", ""},
};

/// A secret in what the screen holds, but for those that its own person asked to see; "" when there is none.
std::string shownSecret(ScreenSnapshot now, const Person& own, const std::vector<Actor>& all) {
    now.instance = 0;
    const std::string whole = all.size() > 1 ? *snapshotJson(now) : "";
    for (const Actor& each : all) {
        std::vector<std::string_view> others;
        for (const std::string_view secret : each.person->secrets())
            if (std::ranges::count(own.secrets(), secret) == 0) others.push_back(secret);
        if (const auto shown = foundIn(whole, others); !shown.empty()) return shown + " of the other one";
    }
    std::erase_if(now.rows, [](const DetailRow& row) { return row.secret && !row.masked; });
    if (now.passcode && !now.passcode->secure) now.passcode->visibleDigits.clear();
    constexpr std::string_view tokens[] = {"pci-token", "bearer-token"};
    const std::string json = *snapshotJson(now);
    const std::string token = foundIn(json, tokens);
    const auto secrets = own.secrets();
    return token.empty() ? foundIn(json, std::span(secrets).first(secrets.size() - 1)) : token;
}

/// What is wrong with what that one shows, or "".
std::string wrongOnScreen(std::size_t at, const World& world) {
    const Actor& actor = world.actors()[at];
    if (!actor.appeared) return {};
    const ScreenSnapshot now = actor.screen();
    const std::string secret = shownSecret(now, *actor.person, world.actors());
    if (!secret.empty()) return "shows " + secret;
    if (!actor.state.lock()->pendingPin.empty() && ResultPage::find(now.view) &&
        now.view != UhOhTryAgainWithErrorMsgView)
        return "still holds the PIN on " + now.view;
    const auto met = rowsAndViews(now);
    if (!met.empty() && met.begin()->starts_with("!")) return *met.begin();
    if (!world.isAwaiting(at)) {
        if (now.spinner) return "a spinner on " + now.view + ", and nothing is under way";
        if (!std::ranges::any_of(now.controls, &Control::enabled))
            return "nothing can be done on " + now.view;
    }
    return now.depth > 10 ? "the stack grows" : "";
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

std::set<std::string> rowsAndViews(const ScreenSnapshot& now) {
    std::set<std::string> met;
    bool isHost = true;  // a host stands at the root, and where a page pushes one
    for (std::size_t i = 0; i < now.stack.size(); ++i) {
        const std::string& from = now.stack[i];
        met.insert("view " + from);
        if (i + 1 == now.stack.size()) break;
        const std::string& to = now.stack[i + 1];
        bool isListed = false, isPushed = false;
        const auto show = [&](const ViewTable* table) {
            if (!table || !table->lists(to)) return;
            isListed = true;
            met.insert("row " + std::string{table->host} + " " + to);
        };
        if (isHost) show(tableOf(from));
        for (auto [push, end] = pushes.equal_range(from); push != end && !isHost; ++push) {
            isPushed |= push->second == to;
            if (push->second != to) show(tableOf(push->second));
        }
        if (!isListed && !isPushed) met.insert("!" + from + " shows " + to + ", which it does not list");
        isHost = isPushed && tableOf(to);
    }
    if (isHost && !now.stack.empty() && !now.spinner)
        met.insert("!" + now.view + " shows nothing and decides nothing");
    return met;
}

std::string wrongAfter(const Before& before, const Step& step, const World& world) {
    if (!world.trouble.empty()) return world.trouble;
    if (std::string wrong = wrongBetween(before, step, world); !wrong.empty()) return wrong;
    const Actor& actor = world.actors()[step.actor];
    const ScreenSnapshot& then = before.screens[step.actor];
    const auto control = step.does == Step::Does::tap ? leading.find(step.text) : leading.end();
    std::string result = control == leading.end() ? "" : control->second;
    const bool goesBack = control != leading.end() && result.empty();
    if (!result.empty() && then.card && actor.doneSomething) result = "SUCCESS";
    if (actor.closedWith != result) return "closes with " + actor.closedWith + ", not " + result;
    for (std::size_t i = 0; i < world.actors().size(); ++i) {
        if (!world.actors()[i].journey || (i != step.actor && step.does != Step::Does::wait)) continue;
        if (std::string wrong = wrongOnScreen(i, world); !wrong.empty()) return wrong;
    }
    const ScreenSnapshot now = actor.screen();
    const bool isEarlier = now.stack.size() < then.stack.size() &&
                           std::equal(now.stack.begin(), now.stack.end(), then.stack.begin());
    return goesBack && !isEarlier ? step.text + " leads from " + then.view + " to " + now.view : "";
}

}  // namespace korvane::explorer
