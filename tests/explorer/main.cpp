// SPDX-License-Identifier: Apache-2.0
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string_view>

#include "flows/ResultPage.h"
#include "tests/explorer/Explorer.h"

namespace korvane::explorer {
namespace {

using Token = Start::Token;

struct Unreached {
    std::string_view who;   ///< host, or text
    std::string_view view;  ///< "": any
    const char* why;
};

/// What no walk reaches, and why.
constexpr Unreached unreachedRows[] = {
    {"", "UhOhContactSupportView",
     "no decision leads to it: every failure that a person can do nothing about "
     "offers to try again"},
    {"SetPIN", "SetPIN_NoNav", "the SMS step's way back: the decision starts anew in place"},
    {"SetPIN_NoNav", "", "no journey nests it"},
    {"CardImage_NoNav", "", "no journey nests it"},
    {"ActivateCardAndSetPIN", "EnterCardPINView", "its start page leads there"},
    {"ActivateCardAndSetPIN", "EnterCardLastFourView", "its start page leads there"},
    {"ActivateCardAndSetPIN_NoNav", "EnterCardPINView", "its start page leads there"},
    {"ActivateCardAndSetPIN_NoNav", "EnterCardLastFourView", "its start page leads there"},
    {"ActivateCardAndSetPINMultiView", "CardAlreadyActivatedView", "decided before the start page shows"},
    {"ActivateCardAndSetPINMultiView", "SMSExplainView", "decided before the start page shows"},
    {"ActivateCardAndSetPINMultiView", "UhOhTryAgainView", "decided before the start page shows"},
    {"ActivateCardAndSetPINMultiView", "CardImage_NoNav", "the activation never nests the viewer"},
    {"ActivateCardAndSetPINMultiView", "SetPIN_NoNav", "the activation sets the PIN with its own screens"},
    {"AutoNavMultiView", "SetPIN_NoNav", "the SMS step returns to the screen that asked"},
    {"AutoNavMultiView", "CardImage_NoNav", "the SMS step returns to the screen that asked"},
    {"AutoNavMultiView", "ConfirmCardPINView", "the SMS step returns to the screen that asked"},
    {"CardImageActivateMultiView", "UhOhTryAgainView", "the button calls nothing that could fail"},
};
constexpr Unreached unreachedViews[] = {
    {"UhOhContactSupportView", "", "as above"},
    {"SetPIN_NoNav", "", "as above"},
    {"SomethingDoesntMatchView", "", "two entries that differ are told of on the confirm screen itself"},
};
constexpr Unreached unreachedTexts[] = {
    // in small letters
    {" - resp is nil", "", "the client always has a reply or an error"},
    {"api.getcardstatus resp is nil", "", "the client always has a reply or an error"},
    {"resstructiv is nil", "", "asking for an IV always has a record"},
};

/// Every text of the code that tells of a failure.
std::set<std::string> failureTexts() {
    static const std::regex literal(R"re("((?:[^"\\]|\\.)*)")re");
    static const std::regex failure(
        R"(^Failure: .| nil$|failed\.?$| error$|^errors\.|^sdk\.error\.|incorrect$)");
    std::set<std::string> texts;
    for (const char* const folder : {"custody", "flows", "operations", "transport"}) {
        for (const auto& file :
             std::filesystem::directory_iterator(std::string{KORVANE_SOURCES "/"} + folder)) {
            if (file.path().extension() != ".cpp") continue;
            std::ifstream source(file.path());
            for (std::string line; std::getline(source, line);) {
                line.resize(std::min(line.size(), line.find("// ")));
                for (std::sregex_iterator match(line.begin(), line.end(), literal), end; match != end;
                     ++match) {
                    if (const std::string text = (*match)[1]; std::regex_search(text, failure))
                        texts.insert(text);
                }
            }
        }
    }
    return texts;
}

std::set<std::string> allViews() {
    std::set<std::string> views;
    for (const auto& [host, view] : allTableRows()) views.insert(view);
    for (const ResultPage::Row& page : ResultPage::rows()) views.emplace(page.view);
    return views;
}

using Missed = std::set<std::pair<std::string, std::string>>;

/// Prints what was not reached; true when that is exactly what is known to be out of reach.
template <std::size_t size>
bool explain(const char* what, const Missed& missed, std::size_t all, const Unreached (&known)[size]) {
    std::printf("%ss: %zu of %zu reached\n", what, all - missed.size(), all);
    bool allKnown = true;
    std::set<const Unreached*> used;
    for (const auto& row : missed) {
        const std::string& who = row.first;
        const std::string& view = row.second;
        const auto entry = std::find_if(std::begin(known), std::end(known), [&](const Unreached& each) {
            return (each.who.empty() || each.who == who) && (each.view.empty() || each.view == view);
        });
        const bool isKnown = entry != std::end(known);
        if (isKnown) used.insert(entry);
        allKnown &= isKnown;
        std::printf("  not reached: %s %s (%s)\n", who.c_str(), view.c_str(),
                    isKnown ? entry->why : "UNEXPLAINED");
    }
    for (const Unreached& each : known) {
        if (used.contains(&each)) continue;
        std::printf("  REACHED, though said to be out of reach: %s %s\n", each.who.data(), each.view.data());
        allKnown = false;
    }
    return allKnown;
}

using Starts = std::vector<Start>;

/// Those of every journey.
Starts starts(const std::vector<std::string>& types, const std::vector<std::string>& statuses,
              const std::vector<std::pair<bool, Token>>& tokens) {
    Starts all;
    for (const JourneyKind kind :
         {JourneyKind::setPIN, JourneyKind::activateCardAndSetPIN, JourneyKind::getCardImage}) {
        for (const std::string& type : types) {
            for (const std::string& status : statuses) {
                for (const auto& [biometrics, token] : tokens)
                    all.push_back({kind, type, status, biometrics, token});
            }
        }
    }
    return all;
}

struct Leg {
    const char* name;
    Explorer::Scope scope;
    Starts starts;
};

const std::vector<std::pair<bool, Token>> commonTokens{
    {false, Token::none}, {false, Token::held}, {true, Token::stored}};
const std::vector<std::pair<bool, Token>> allTokens{
    {false, Token::none},      {false, Token::held},          {true, Token::none},
    {true, Token::held},       {true, Token::stored},         {true, Token::halfStored},
    {true, Token::unreadable}, {true, Token::timeUnreadable}, {true, Token::noReader}};

std::vector<Leg> shortForm() {
    return {{"no fault", {0, true}, starts({"physical", "virtual"}, {"P2"}, {{false, Token::held}})},
            {"one basic fault",
             {1, true},
             {{JourneyKind::setPIN, "physical", "A1", true, Token::none},
              {JourneyKind::setPIN, "physical", "P2", false, Token::held},
              {JourneyKind::activateCardAndSetPIN, "virtual", "P2", true, Token::stored},
              {JourneyKind::activateCardAndSetPIN, "physical", "A1", true, Token::noReader},
              {JourneyKind::getCardImage, "wearable", "BT", false, Token::held}}}};
}

std::vector<Leg> fullForm() {
    return {{"one fault, all cards",
             {1, false},
             starts({"physical", "virtual", "wearable", "paywallet", "sticker"}, {"A1", "BT", "P2", "X9"},
                    commonTokens)},
            {"one fault, all tokens", {1, false}, starts({"physical", "virtual"}, {"A1", "P2"}, allTokens)},
            {"two basic faults", {2, true}, starts({"physical", "virtual"}, {"A1", "P2"}, allTokens)},
            {"two faults",
             {2, false},
             {{JourneyKind::setPIN, "physical", "A1", false, Token::none},
              {JourneyKind::activateCardAndSetPIN, "virtual", "P2", false, Token::held},
              {JourneyKind::getCardImage, "physical", "A1", false, Token::none}}}};
}

double seconds() {
    static const auto begin = std::chrono::steady_clock::now();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

int run(bool full) {
    Explorer explorer(failureTexts());
    for (const Leg& leg : full ? fullForm() : shortForm()) {
        const std::size_t states = explorer.states, transitions = explorer.transitions;
        const double begin = seconds();
        for (const Start& start : leg.starts) explorer.explore(start, leg.scope);
        std::printf("%-22s %3zu starts, %7zu states, %8zu transitions, %6.1f s, %zu violations so far\n",
                    leg.name, leg.starts.size(), explorer.states - states, explorer.transitions - transitions,
                    seconds() - begin, explorer.violations.size());
        std::fflush(stdout);
    }
    std::printf("%zu states, %zu transitions, longest path %zu steps, %.1f s, %zu violations\n",
                explorer.states, explorer.transitions, explorer.longestPath, seconds(),
                explorer.violations.size());
    for (const Violation& violation : explorer.violations) {
        std::printf("VIOLATION: %s\n", violation.what.c_str());
        printAsCommands(violation.start, violation.path);
    }
    Missed rows, views, texts;
    for (const TableRow& row : allTableRows()) {
        if (!explorer.rows.contains(row)) rows.insert(row);
    }
    for (const std::string& view : allViews()) {
        if (!explorer.views.contains(view)) views.emplace(view, "");
    }
    for (const std::string& text : explorer.missedTexts()) texts.emplace(text, "");
    const bool explained[] = {explain("row", rows, allTableRows().size(), unreachedRows),
                              explain("view", views, allViews().size(), unreachedViews),
                              explain("failure text", texts, failureTexts().size(), unreachedTexts)};
    // Some failures take an answer that the short form leaves out.
    return explorer.violations.empty() && explained[0] && explained[1] && (explained[2] || !full) ? 0 : 1;
}

}  // namespace
}  // namespace korvane::explorer

int main(int argc, char** argv) {
    const std::string_view option = argc == 2 ? argv[1] : "";
    if (argc > 1 && option != "--full") {
        std::fputs("usage: korvane_explorer [--full]\n", stderr);
        return 2;
    }
    return korvane::explorer::run(option == "--full");
}
