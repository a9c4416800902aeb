// SPDX-License-Identifier: Apache-2.0
#include <cstdio>
#include <map>
#include <utility>

#include "tests/explorer/Explorer.h"

namespace korvane::explorer {
namespace {

/// What is only known when it is replayed.
const std::map<std::string, std::string> replayed{{"350912", "CODE"}, {"6603", "LAST4"}, {"731", "CVV"}};

constexpr const char* journeys[] = {"set-pin", "activate", "card"};                        // by kind
constexpr const char* tokens[] = {"none", "held", "stored", "half stored", "no reader"};   // by Token
constexpr const char* commands[] = {"tap", "type", "erase", "sleep", "# answer", "quit"};  // by Does

}  // namespace

void printAsCommands(const Path& path) {
    std::string card = "card-physical-active", rules;
    std::map<std::string, std::string> waiting;  // rules that only count the requests before a fault
    for (const Step& step : path.steps) {
        if (!step.answer || !std::holds_alternative<UrlReply>(step.answer->content)) continue;
        if (!step.answer->card.empty()) card = step.answer->card;
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
    World world(path.start, static_cast<int>(path.steps.size()), [](std::string_view) {});
    std::string shown;
    for (const Step& step : path.steps) {
        const std::string view = world.screen().view;
        if (!step.answer && !world.isAwaiting() && view != shown) std::printf("wait %s\n", view.c_str());
        if (!step.answer) shown = view;
        const auto known = replayed.find(step.text);
        const bool hasRule = !step.fault || !step.answer->fault.empty();
        std::printf(
            "%s %s%s\n", commands[static_cast<int>(step.does)],
            (known == replayed.end() ? step.text : known->second).c_str(),
            !step.answer ? "" : (": " + step.answer->name + (hasRule ? "" : ", no rule does it")).c_str());
        world.apply(step);
    }
    std::printf(world.isClosed() ? "# closed\n" : "wait %s\n", world.screen().view.c_str());
}

}  // namespace korvane::explorer
