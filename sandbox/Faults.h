// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <list>
#include <optional>
#include <string_view>
#include <vector>

#include "sandbox/FaultRule.h"

namespace korvane::sandbox {

/// The rules in force, oldest first, and behind them those of the magic cards.
/// Not thread-safe.
class Faults {
  public:
    /// `start` are in force from the start, and again after `reset`.
    explicit Faults(std::vector<FaultRule> start);

    void add(std::vector<FaultRule> rules);
    void clear() { rules_.clear(); }
    void reset() { rules_.assign(start_.begin(), start_.end()); }

    /// The first rule that fits and whose chance comes up; one of its uses is
    /// spent.
    std::optional<FaultRule> take(const Endpoint& endpoint, std::string_view cardId);

    const std::list<FaultRule>& rules() const { return rules_; }

  private:
    const std::vector<FaultRule> start_;
    std::list<FaultRule> rules_;
    std::list<FaultRule> magic_;
};

}  // namespace korvane::sandbox
