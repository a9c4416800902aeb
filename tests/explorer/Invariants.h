// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <set>
#include <string>
#include <utility>

#include "tests/explorer/World.h"

namespace korvane::explorer {

/// A row of the view tables: who shows it, and the view.
using TableRow = std::pair<std::string, std::string>;

std::set<TableRow> allTableRows();
/// The rows by which the screens of the stack came to be shown; `complaint` tells of one that nobody lists.
std::set<TableRow> rowsOf(const std::vector<std::string>& stack, std::string& complaint);

/// What is wrong with the world that `step` led to, or "".
std::string wrongAfter(const ScreenSnapshot& before, const Step& step, const World& world);

}  // namespace korvane::explorer
