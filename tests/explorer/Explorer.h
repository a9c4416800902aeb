// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "tests/explorer/Invariants.h"

namespace korvane::explorer {

struct Path {
    Start start;
    std::vector<Step> steps;
};

/// Walks every state that can be reached from a set of starts, equal states merged. Each walk goes on for a
/// while from where it came to, so that the way there is gone once for many steps; what is shortest is found
/// in the whole graph at the end.
class Explorer {
  public:
    /// @param missed what is to be met, "row …", "view …", "text …" (small letters, on the console or the
    /// screen); what is met is taken out
    explicit Explorer(std::set<std::string>& missed) : missed_(missed) {}

    void explore(const std::vector<Start>& starts, const Scope& scope);

    std::size_t transitions = 0;
    std::map<std::string, Path> violations;  ///< the shortest path to each kind

    std::size_t states() const { return all_.size(); }
    /// The shortest path to where the view is in sight and nothing under way.
    std::optional<Path> pathTo(const std::string& view) const;

  private:
    static constexpr std::size_t none = SIZE_MAX;

    struct Edge {
        Step step;
        std::size_t to = none;
    };
    struct State {
        std::size_t parent;  ///< the start's number, when there is no `via`
        std::size_t via;     ///< which of the parent's edges led here
        std::string view;    ///< in sight while nothing is under way
        bool ended;          ///< or never to be, because the host let go
        std::vector<Edge> next = {};
        std::size_t walked = 0;
    };

    std::size_t take(World& world, std::size_t from);
    std::size_t meet(const World& world, std::size_t parent, std::size_t via);
    void meetText(std::string_view text);
    Path pathTo(std::size_t index) const;
    void shorten();
    void findTraps();

    std::set<std::string>& missed_;
    std::vector<Start> starts_;
    Scope scope_;
    std::vector<State> all_;
    std::unordered_map<std::string, std::size_t> known_;
    std::map<std::string, std::size_t> nearest_;  // by view
    std::unordered_set<std::string> met_;
    std::multimap<std::string, std::pair<std::size_t, std::size_t>> wrong_;  // edges, by what they did
};

/// Prints the path as lines for the console and the sandbox, which tests/explorer/replay_test.py feeds them.
void printAsCommands(const Path& path);

}  // namespace korvane::explorer
