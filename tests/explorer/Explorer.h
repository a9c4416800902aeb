// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/explorer/Invariants.h"

namespace korvane::explorer {

using Path = std::vector<Step>;

struct Violation {
    std::string what;
    Start start;
    Path path;
};

/// Walks every state that can be reached from a start, breadth first, equal states merged.
class Explorer {
  public:
    /// How far a walk goes.
    struct Scope {
        int faults;      ///< how many answers on one path, at most, are not a success
        bool basicOnly;  ///< only the basic ones of those, and a person waits for what is under way, or goes
                         ///< back
    };

    /// @param texts those that the walks are to meet on the console or the screen, in any letters
    explicit Explorer(const std::set<std::string>& texts);

    void explore(const Start& start, const Scope& scope);

    std::size_t states = 0;
    std::size_t transitions = 0;
    std::size_t longestPath = 0;
    std::set<TableRow> rows;
    std::set<std::string> views;
    std::vector<Violation> violations;  ///< the shortest path of each kind
    const std::set<std::string>& missedTexts() const { return missed_; }

  private:
    struct State {
        std::size_t parent = 0;
        Step step;  ///< from there to here
        Path next;
        bool ended = false;                    ///< or never to be, because the host let go
        std::vector<std::size_t> goodOrigins;  ///< states that lead here while all goes well
    };

    void meet(std::string_view text);
    void cover(const World& world);
    void report(const std::string& what, const Start& start, const Path& path);
    static Path pathTo(const std::vector<State>& all, std::size_t index);
    void findTraps(const std::vector<State>& all, const Start& start);

    std::set<std::string> missed_;
};

/// Prints the path as what replays it on the console: rules for the sandbox, then commands.
void printAsCommands(const Start& start, const Path& path);

}  // namespace korvane::explorer
