// SPDX-License-Identifier: Apache-2.0
#include "tests/explorer/Explorer.h"

#include <algorithm>
#include <cstdio>
#include <unordered_map>

#include "base/Text.h"

namespace korvane::explorer {

using Does = Step::Does;

Explorer::Explorer(const std::set<std::string>& texts) {
    for (const std::string& text : texts) missed_.insert(lowercased(text));
}

void Explorer::meet(std::string_view text) {
    if (missed_.empty() || text.empty()) return;
    const std::string met = lowercased(text);
    std::erase_if(missed_, [&](const std::string& each) { return met.find(each) != std::string::npos; });
}

void Explorer::cover(const World& world) {
    const ScreenSnapshot now = world.screen();
    if (now.stack.empty()) return;
    std::string ignored;
    rows.merge(rowsOf(now.stack, ignored));
    views.insert(now.stack.begin(), now.stack.end());
    meet(now.toast);
    meet(now.message);
}

Path Explorer::pathTo(const std::vector<State>& all, std::size_t index) {
    Path path;
    for (; index != 0; index = all[index].parent) path.push_back(all[index].step);
    std::reverse(path.begin(), path.end());
    return path;
}

void Explorer::report(const std::string& what, const Start& start, const Path& path) {
    for (Violation& known : violations) {
        if (known.what != what) continue;
        if (path.size() < known.path.size()) known = {what, start, path};
        return;
    }
    violations.push_back({what, start, path});
}

void Explorer::explore(const Start& start, const Scope& scope) {
    const auto onLine = [this](std::string_view line) { meet(line); };
    std::vector<State> all(1);
    std::unordered_map<std::string, std::size_t> known;
    {
        World world(start, scope.faults, onLine);
        cover(world);
        all[0].next = world.possible(scope.basicOnly);
        known.emplace(world.key(), 0);
    }
    for (std::size_t at = 0; at < all.size(); ++at) {
        const Path path = pathTo(all, at);
        const Path next = all[at].next;
        for (const Step& step : next) {
            World world(start, scope.faults, onLine);
            for (const Step& each : path) world.apply(each);
            const ScreenSnapshot before = world.screen();
            world.apply(step);
            ++transitions;

            std::string wrong = wrongAfter(before, step, world);
            cover(world);
            const auto [entry, isNew] = known.emplace(world.key(), all.size());
            if (isNew) {
                all.push_back(
                    {at, step, world.possible(scope.basicOnly), world.isClosed() || world.hostLetGo(), {}});
                longestPath = std::max(longestPath, path.size() + 1);
                if (wrong.empty()) wrong = world.useWhatIsRefused();
            }
            if (!step.answer || step.answer->success) all[entry->second].goodOrigins.push_back(at);
            if (wrong.empty()) wrong = world.leftBehind();
            if (wrong.empty()) continue;
            Path whole = path;
            whole.push_back(step);
            report(wrong, start, whole);
        }
    }
    findTraps(all, start);
    states += all.size();
}

void Explorer::findTraps(const std::vector<State>& all, const Start& start) {
    std::vector<bool> canEnd(all.size());
    std::vector<std::size_t> open;
    const auto reach = [&](std::size_t index) {
        if (!canEnd[index]) open.push_back(index);
        canEnd[index] = true;
    };
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (all[i].ended) reach(i);
    }
    while (!open.empty()) {
        const std::size_t at = open.back();
        open.pop_back();
        for (const std::size_t origin : all[at].goodOrigins) reach(origin);
    }
    const auto trap = std::find(canEnd.begin(), canEnd.end(), false);
    if (trap != canEnd.end())
        report("no way to end the journey, even if all goes well from here", start,
               pathTo(all, static_cast<std::size_t>(trap - canEnd.begin())));
}

const char* tokenName(Start::Token token) {
    const char* const names[] = {"none",
                                 "held: go through the SMS step, then set the rules",
                                 "stored",
                                 "half stored",
                                 "unreadable",
                                 "time unreadable",
                                 "stored, no reader"};
    return names[static_cast<int>(token)];
}

void printAsCommands(const Start& start, const Path& path) {
    const char* const journeys[] = {"set-pin", "activate", "card"};  // in the order of the kinds
    const std::map<std::string, std::string> suffixes{{"A1", "active"}, {"BT", "frozen"}, {"P2", "new"}};
    const auto suffix = suffixes.find(start.cardStatus);
    const std::string card = start.cardType == "sticker" ? "unknown-type"
                             : suffix == suffixes.end()  ? "unknown-status"
                                                         : start.cardType + "-" + suffix->second;
    std::printf("  korvane-journey %s --card card-%s --biometrics %s  # token: %s\n",
                journeys[static_cast<int>(start.kind)], card.c_str(), start.biometrics ? "on" : "off",
                tokenName(start.token));
    // The sandbox's own first answer is 401, to a bearer token that is not there yet.
    std::string rules;
    for (const Step& step : path) {
        if (!step.answer || !std::holds_alternative<UrlReply>(step.answer->content)) continue;
        if (rules.empty() && step.answer->name != "401")
            rules = "{\"endpoint\":\"" + step.text + "\",\"status\":401}";
        const std::string& fault = step.answer->fault;
        rules += (rules.empty() ? "{\"endpoint\":\"" : ",\n   {\"endpoint\":\"") + step.text + "\"," +
                 (fault.empty() ? "\"delayMs\":0" : fault) + "}";
    }
    std::printf("  rules: [%s]\n", rules.c_str());

    World world(start, static_cast<int>(path.size()), [](std::string_view) {});
    std::string shown;
    for (const Step& step : path) {
        const ScreenSnapshot now = world.screen();
        if (now.view != shown && !now.spinner) std::printf("  wait %s\n", now.view.c_str());
        shown = now.view;
        switch (step.does) {
            case Does::tap:
                std::printf("  tap %s\n", step.text.c_str());
                break;
            case Does::type:
                std::printf("  type %s\n", step.text.c_str());
                break;
            case Does::erase:
                std::printf("  erase\n");
                break;
            case Does::wait:
                std::printf("  wait nothing %s\n", step.text.c_str());
                break;
            case Does::answer:
                std::printf("  # %s: %s\n", step.text.c_str(), step.answer->name.c_str());
                break;
        }
        world.apply(step);
    }
    std::printf("  # then: %s\n", world.isClosed() ? "closed" : world.screen().view.c_str());
}

}  // namespace korvane::explorer
