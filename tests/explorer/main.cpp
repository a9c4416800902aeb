// SPDX-License-Identifier: Apache-2.0
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <ranges>
#include <regex>
#include <unordered_map>

#include "base/Text.h"
#include "tests/explorer/World.h"

namespace korvane::explorer {
namespace {

/// What no walk meets, and why.
constexpr std::pair<const char*, const char*> unreached[] = {
    {"UhOhContactSupportView", "no decision leads to it: all that fails can be tried again"},
    {"view SomethingDoesntMatchView", "the confirm screen itself tells of entries that differ"},
    {" SetPIN_NoNav", "no journey nests it, and after the SMS step the decision starts anew in place"},
    {"row CardImage_NoNav ", "no journey nests it"},
    {"row ActivateCardAndSetPIN(_NoNav)? EnterCard", "its start page leads there"},
    {"row .*SetPINMultiView (CardAlready|SMSExplain|UhOhTryAgain)", "decided before the start page shows"},
    {"row ActivateCardAndSetPINMultiView CardImage_NoNav", "the activation never nests the viewer"},
    {"row AutoNavMultiView C", "the SMS step returns to the screen that asked"},
    {"row CardImageActivateMultiView UhOhTryAgainView", "the button calls nothing that could fail"},
    {"row ConfirmCardPINMultiView",
     "the confirm screen moves by itself, through the view of automatic moves"},
    {" resp is nil", "the client always has a reply or an error"},
};

/// Every text of the code that tells of a failure.
std::set<std::string> failureTexts() {
    const std::regex failure(
        R"re("(Failure: .[^"]*|[^"]*(?: nil|failed\.?| error|incorrect)|(?:sdk\.error|errors)\.[^"]*)")re");
    std::set<std::string> texts;
    for (const std::string folder : {"custody", "flows", "operations", "transport"}) {
        for (const auto& file : std::filesystem::directory_iterator(KORVANE_SOURCES "/" + folder)) {
            std::ifstream source(file.path());
            for (std::string line; file.path().extension() == ".cpp" && std::getline(source, line);) {
                line.resize(std::min(line.size(), line.find("// ")));
                for (std::sregex_iterator match(line.begin(), line.end(), failure), end; match != end;
                     ++match)
                    texts.insert("text " + lowercased((*match)[1].str()));
            }
        }
    }
    return texts;
}

struct Path {
    Start start;
    std::vector<Step> steps;
};

/// Walks every state that can be reached from a set of starts, the nearest first, equal states merged.
class Explorer {
  public:
    Explorer(const std::vector<Start>& starts, const Scope& scope) : scope_(scope) {
        for (const Start& start : starts) meet(World(start, scope), {start, {}});
        for (std::size_t at = 0; at < states.size(); ++at) {
            for (const Step& step : std::exchange(states[at].next, {})) walk(at, step);
        }
        // From each state the journey can be ended if all goes well from there.
        const auto leadsOn = [this](std::size_t to) { return states[to].canEnd; };
        for (bool isNew = true; std::exchange(isNew, false);) {
            for (State& each : states | std::views::reverse)
                if (!each.canEnd && std::ranges::any_of(each.ahead, leadsOn)) each.canEnd = isNew = true;
        }
        for (const State& each : states)
            if (!each.canEnd)
                violations.emplace("no way to end the journey, even if all goes well", each.path);
    }

    struct State {
        Path path;    ///< a shortest one
        bool canEnd;  ///< all journeys, if all goes well
        std::vector<Step> next;
        std::vector<std::size_t> ahead = {};                   ///< where they lead, if all goes well
        std::vector<std::pair<Step, std::size_t>> taken = {};  ///< steps, and where they led
    };
    std::vector<State> states;
    std::size_t transitions = 0;
    std::map<std::string, Path> violations;  ///< the shortest path to each kind
    std::map<std::string, Path> views;       ///< the shortest path to where each is seen, nothing under way
    std::set<std::string> met;               ///< rows and views, messages and console lines

  private:
    void walk(std::size_t from, const Step& step) {
        Path path = states[from].path;
        World world(path.start, scope_);
        for (const Step& each : path.steps) world.apply(each);
        // The path is put together of steps from states that were taken for equal.
        if (const auto found = known_.find(world.key()); found == known_.end() || found->second != from) {
            violations.emplace("what was taken for equal is not", path);
            return;
        }
        const Before before = world.before(step);
        world.apply(step);
        path.steps.push_back(step);
        ++transitions;
        std::string wrong = wrongAfter(before, step, world);
        const std::size_t to = meet(world, path);
        // An interloper is used by nobody.
        const bool isLed = step.does != Step::Does::leave || (scope_.interloper && step.actor == 1);
        if (isLed && !step.fault) states[from].ahead.push_back(to);
        if (wrong.empty() && world.isClosed()) wrong = world.leftBehind();
        if (!wrong.empty()) violations.emplace(wrong, path);
        // Equal states lead on alike: one of the steps that were taken from the one is taken from the other.
        if (const auto& taken = states[to].taken; !taken.empty()) {
            const auto& [again, led] = taken[transitions % taken.size()];
            world.apply(again);
            const auto found = known_.find(world.key());
            if (found == known_.end() || found->second != led)
                violations.emplace("what was taken for equal leads elsewhere", path);
        }
        states[from].taken.emplace_back(step, to);
    }

    std::size_t meet(const World& world, const Path& path) {
        for (const Actor& each : world.actors()) met.insert({each.screen().message, each.screen().toast});
        for (const std::string& line : world.device.console->lines()) met.insert(line);
        const auto [entry, isNew] = known_.emplace(world.key(), states.size());
        const std::size_t to = entry->second;
        if (isNew) {
            states.push_back({path, world.isClosed(), world.possible()});
            for (const Actor& each : world.actors()) met.merge(rowsAndViews(each.screen()));
            if (!world.isAwaiting(0)) views.emplace(world.actors()[0].screen().view, path);
        } else if (states[to].path.steps.size() == path.steps.size()) {
            states[to].path = path;
        }
        return to;
    }

    const Scope scope_;
    std::unordered_map<std::string, std::size_t> known_;
};

/// These lead on by themselves: to the call again, or to the SMS step.
constexpr std::string_view rerunFaults[] = {"200 \"failure: iv IS EXPIRED\"",
                                            "500 \"FAILURE: EXPIRED TOKEN\"", "401",
                                            "400 \"FAILURE: invalid OFFSETID\""};

struct Job {
    std::string name;
    std::vector<Start> starts;
    Scope scope;
};

constexpr JourneyKind kinds[] = {JourneyKind::setPIN, JourneyKind::activateCardAndSetPIN,
                                 JourneyKind::getCardImage};
constexpr const char* journeys[] = {"set-pin", "activate", "card"};                       // by kind
constexpr const char* tokens[] = {"none", "held", "stored", "half stored", "no reader"};  // by Token
constexpr const char* commands[] = {"tap",      "type", "erase",       "# seconds",
                                    "# answer", "quit", "# construct", "# appear"};  // by Does

/// Two journeys: the first one of that kind.
void addPairs(JourneyKind kind, bool full, std::vector<Job>& jobs) {
    using enum Start::Token;
    const auto set = JourneyKind::setPIN, view = JourneyKind::getCardImage;
    const std::vector<JourneyKind> all(std::begin(kinds), std::end(kinds));
    const std::vector<JourneyKind> later(std::ranges::find(all, kind), all.end());
    const auto add = [&](std::string what, const std::vector<JourneyKind>& seconds, Start start,
                         Scope scope) {
        std::vector<Start> starts;
        for (const JourneyKind second : seconds) {
            start.second = second;
            starts.push_back(start);
        }
        if (scope.card.empty()) scope.card = "card-physical-new";
        scope.secondCard = start.sameCard                ? scope.card
                           : scope.card.ends_with("new") ? "card-virtual-new"
                                                         : scope.card;
        jobs.push_back({(start.sameCard ? "same card, " : "two cards, ") + what, starts, scope});
    };
    const Start bare{kind}, withToken{kind, false, held}, sameBare{kind, false, none, {}, true},
        sameWithToken{kind, false, held, {}, true};
    if (!full) {
        add("interloper", all, withToken, {.interloper = true});
        if (kind == set) add("interloper", {set}, sameBare, {.interloper = true});
        if (kind == set) add("both", {set}, bare, {.card = "card-physical-active"});
        const std::string card = kind == view ? "card-physical-active" : "";
        add("interloper, IV refused", {set}, withToken,
            {.faults = 1, .card = card, .interloper = true, .only = {rerunFaults[0]}});
        return;
    }
    const std::vector<std::string_view> some(std::begin(rerunFaults), std::end(rerunFaults));
    // The viewer nests the activation, so beside it less is walked; it is the second one beside each of the
    // others.
    const bool viewer = kind == view;
    const std::vector<JourneyKind> fewer = viewer ? std::vector{set} : all;
    add("interloper, one fault", fewer, bare, {.faults = 1, .interloper = true, .only = some});
    add("interloper, one fault", fewer, sameWithToken, {.faults = 1, .interloper = true, .only = some});
    add("both", later, viewer ? withToken : bare, {});
    add("both", later, sameWithToken, {});
    if (kind == set) add("both", {set}, sameBare, {});
}

std::vector<Job> jobs(bool full) {
    using enum Start::Token;
    std::vector<Job> jobs;
    for (const JourneyKind kind : kinds) {
        const bool viewer = kind == JourneyKind::getCardImage;
        const std::string oneCard = viewer ? "card-wearable-frozen" : "card-physical-new";
        const Start bare{kind}, withToken{kind, false, held}, withStore{kind, true, stored};
        const std::vector<Start> all{bare,
                                     withToken,
                                     withStore,
                                     {kind, true, noReader},
                                     {kind, true, none},
                                     {kind, true, held},
                                     {kind, true, halfStored}};
        if (full) {
            jobs.push_back({"one fault", all, {1, true, false, viewer ? oneCard : ""}});
            if (viewer) {  // it nests the activation: every card with every fault would take half an hour
                jobs.push_back({"one basic fault", all, {1}});
                jobs.push_back({"no fault, every card", all, {0, true}});
            }
            jobs.push_back({"one basic fault, restless", {withToken, withStore}, {1, false, true, oneCard}});
            jobs.push_back({"two basic faults", all, {2, false, false, oneCard}});
            jobs.push_back({"two faults", {withToken}, {2, true, false, "card-virtual-active"}});
        } else {
            jobs.push_back({"no fault", all, {0}});
            const Scope oneFault{1, false, false, viewer ? "card-virtual-new" : ""};
            jobs.push_back({"one basic fault", {viewer ? withToken : bare}, oneFault});
        }
        addPairs(kind, full, jobs);
    }
    return jobs;
}

/// Prints the path as lines for the console and the sandbox, which tests/explorer/replay_test.py feeds them;
/// what the second journey does is a comment.
void printAsCommands(const Path& path) {
    std::string card = "card-physical-active", rules;
    std::map<std::string, std::string> waiting;  // rules that only count the requests before a fault
    for (const Step& step : path.steps) {
        if (!step.answer || !std::holds_alternative<UrlReply>(step.answer->content)) continue;
        if (!step.answer->card.empty() && step.actor == 0) card = step.answer->card;
        std::string& before = waiting[step.text];
        const std::string rule = "fault {\"endpoint\":\"" + step.text + "\",";
        if (step.fault)
            rules += std::exchange(before, {}) + rule + step.answer->fault + "}\n";
        else
            before += rule + "\"delayMs\":0}\n";
    }
    std::printf("# biometrics %s, token: %s\n%sjourney %s %s\n", path.start.biometrics ? "on" : "off",
                tokens[static_cast<int>(path.start.token)], rules.c_str(),
                journeys[static_cast<int>(path.start.kind)], card.c_str());
    if (path.start.second)
        std::printf("# the second journey: %s, of %s card\n", journeys[static_cast<int>(*path.start.second)],
                    path.start.sameCard ? "the same" : "another");
    World world(path.start, {.faults = static_cast<int>(path.steps.size())});
    for (const Step& step : path.steps) {
        const std::string shown = world.actors()[0].screen().view;
        if (!step.answer && step.actor == 0 && !world.isAwaiting(0) && !shown.empty())
            std::printf("wait %s\n", shown.c_str());
        std::printf("%s%s %s%s\n", step.actor == 0 ? "" : "# second: ", commands[static_cast<int>(step.does)],
                    step.text.c_str(), step.answer ? (": " + step.answer->name).c_str() : "");
        world.apply(step);
    }
    const Actor& first = world.actors()[0];
    std::printf(first.journey ? "wait %s\n" : "# closed\n", first.screen().view.c_str());
}

/// Prints how a view is reached with the fewest faults, from a start that the console can make.
int printPath(const std::string& view) {
    for (const int faults : {0, 1}) {
        for (const char* const card : {"card-physical-active", "card-physical-new"}) {
            for (const JourneyKind kind : kinds) {
                const Explorer explorer({{kind}}, {.faults = faults, .card = card, .rulesAlone = true});
                const auto path = explorer.views.find(view);
                if (path == explorer.views.end()) continue;
                printAsCommands(path->second);
                return 0;
            }
        }
    }
    std::fprintf(stderr, "no path with one basic fault leads to %s\n", view.c_str());
    return 1;
}

int walkAll(bool full) {
    std::set<std::string> missed = allRowsAndViews();
    missed.merge(failureTexts());
    const std::size_t wanted = missed.size();
    std::size_t states = 0, transitions = 0, violations = 0, unexplained = 0;
    for (const Job& job : jobs(full)) {
        const Explorer explorer(job.starts, job.scope);
        std::printf("%-8s %-34s %zu starts, %6zu states, %7zu transitions\n",
                    journeys[static_cast<int>(job.starts[0].kind)], job.name.c_str(), job.starts.size(),
                    explorer.states.size(), explorer.transitions);
        states += explorer.states.size();
        transitions += explorer.transitions;
        violations += explorer.violations.size();
        for (const auto& [what, path] : explorer.violations) {
            std::printf("VIOLATION: %s\n", what.c_str());
            printAsCommands(path);
        }
        std::fflush(stdout);
        for (const std::string& met : explorer.met) {
            std::erase_if(missed, [text = "text " + lowercased(met), &met](const std::string& item) {
                return item == met || (item.starts_with("text ") && text.find(item.substr(5)) != text.npos);
            });
        }
    }
    for (const std::string& item : missed) {
        const auto reason = std::ranges::find_if(
            unreached, [&](const auto& each) { return std::regex_search(item, std::regex(each.first)); });
        const bool isKnown = reason != std::end(unreached), mayMiss = !full && item.starts_with("text ");
        const char* const why = mayMiss ? "takes an answer that the short form leaves out" : "UNEXPLAINED";
        std::printf("  not reached: %s (%s)\n", item.c_str(), isKnown ? reason->second : why);
        unexplained += !isKnown && !mayMiss;
    }
    std::printf("%zu of %zu rows, views and failure texts reached, %zu unexplained\n", wanted - missed.size(),
                wanted, unexplained);
    std::printf("%zu states, %zu transitions, %ld seconds, %zu violations\n", states, transitions,
                std::clock() / CLOCKS_PER_SEC, violations);
    return violations + unexplained == 0 ? 0 : 1;
}

}  // namespace
}  // namespace korvane::explorer

int main(int argc, char** argv) {
    using namespace korvane::explorer;
    const std::string form = argc > 1 ? argv[1] : "";
    if (form == "--path" && argc == 3) return printPath(argv[2]);
    if (argc == 1 || (form == "--full" && argc == 2)) return walkAll(argc == 2);
    std::fputs("usage: korvane_explorer [--full | --path VIEW]\n", stderr);
    return 2;
}
