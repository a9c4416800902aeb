// SPDX-License-Identifier: Apache-2.0
#include "tests/explorer/Explorer.h"

#include <algorithm>

#include "base/Text.h"

namespace korvane::explorer {

using Does = Step::Does;

void Explorer::meetText(std::string_view text) {
    if (text.empty() || !met_.emplace(text).second) return;
    const std::string met = lowercased(text);
    std::erase_if(missed_, [&](std::string_view item) {
        return item.starts_with("text ") && met.find(item.substr(5)) != std::string::npos;
    });
}

std::size_t Explorer::meet(const World& world, std::size_t parent, std::size_t via) {
    const auto [entry, isNew] = known_.emplace(world.key(), all_.size());
    if (!isNew) return entry->second;
    const ScreenSnapshot now = world.screen();
    std::string ignored;
    for (const std::string& item : rowsAndViews(now.stack, ignored)) missed_.erase(item);
    meetText(now.message);
    all_.push_back({parent, via, world.isAwaiting() ? "" : now.view, world.isClosed() || world.hostLetGo()});
    for (const Step& step : world.possible(scope_)) all_.back().next.push_back({step});
    return entry->second;
}

void Explorer::explore(const std::vector<Start>& starts, const Scope& scope) {
    constexpr int ahead = 40;
    const auto onLine = [this](std::string_view line) { meetText(line); };
    starts_ = starts;
    scope_ = scope;
    for (std::size_t i = 0; i < starts.size(); ++i) meet(World(starts[i], scope.faults, onLine), i, none);
    for (std::size_t at = 0; at < all_.size(); ++at) {
        while (all_[at].walked < all_[at].next.size()) {
            const Path path = pathTo(at);
            World world(path.start, scope.faults, onLine);
            for (const Step& each : path.steps) world.apply(each);
            // The path is put together of steps from states that were taken for equal.
            if (const auto found = known_.find(world.key()); found == known_.end() || found->second != at) {
                wrong_.emplace("what was taken for equal is not", std::pair{at, none});
                break;
            }
            std::size_t here = at;
            for (int i = 0; i < ahead && all_[here].walked < all_[here].next.size(); ++i)
                here = take(world, here);
        }
    }
    shorten();
    findTraps();
    for (const auto& [what, edge] : wrong_) {
        Path path = pathTo(edge.first);
        if (edge.second != none) path.steps.push_back(all_[edge.first].next[edge.second].step);
        const auto [found, isNew] = violations.emplace(what, path);
        if (path.steps.size() < found->second.steps.size()) found->second = path;
    }
}

std::size_t Explorer::take(World& world, std::size_t from) {
    const std::size_t via = all_[from].walked++;
    const Step step = all_[from].next[via].step;
    const ScreenSnapshot before = world.screen();
    world.apply(step);
    ++transitions;
    std::string wrong = wrongAfter(before, step, world);
    meetText(world.screen().toast);
    const std::size_t to = meet(world, from, via);
    all_[from].next[via].to = to;
    if (wrong.empty() && world.isClosed()) wrong = world.leftBehind();
    if (!wrong.empty()) wrong_.emplace(wrong, std::pair{from, via});
    return to;
}

Path Explorer::pathTo(std::size_t index) const {
    Path path;
    for (; all_[index].via != none; index = all_[index].parent)
        path.steps.push_back(all_[all_[index].parent].next[all_[index].via].step);
    std::reverse(path.steps.begin(), path.steps.end());
    path.start = starts_[all_[index].parent];
    return path;
}

std::optional<Path> Explorer::pathTo(const std::string& view) const {
    const auto found = nearest_.find(view);
    return found == nearest_.end() ? std::nullopt : std::optional{pathTo(found->second)};
}

void Explorer::shorten() {
    std::vector<bool> seen(all_.size());
    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < all_.size() && all_[i].via == none; ++i) order.push_back(i), seen[i] = true;
    for (std::size_t at = 0; at < order.size(); ++at) {
        const State& state = all_[order[at]];
        nearest_.emplace(state.view, order[at]);
        for (std::size_t via = 0; via < state.next.size(); ++via) {
            const std::size_t to = state.next[via].to;
            if (to == none || seen[to]) continue;
            seen[to] = true;
            all_[to].parent = order[at];
            all_[to].via = via;
            order.push_back(to);
        }
    }
}

/// From each state the journey can be ended if all goes well from there.
void Explorer::findTraps() {
    std::vector<bool> canEnd(all_.size());
    const auto leadsOn = [&](const Edge& edge) {
        return edge.step.does != Does::leave && !edge.step.fault && edge.to != none && canEnd[edge.to];
    };
    for (bool isNew = true; isNew;) {
        isNew = false;
        for (std::size_t i = all_.size(); i-- > 0;) {
            if (canEnd[i] || !(all_[i].ended || std::ranges::any_of(all_[i].next, leadsOn))) continue;
            canEnd[i] = isNew = true;
        }
    }
    for (std::size_t i = 0; i < all_.size(); ++i) {
        if (!canEnd[i])
            wrong_.emplace("no way to end the journey, even if all goes well", std::pair{i, none});
    }
}

}  // namespace korvane::explorer
