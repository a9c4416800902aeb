// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <set>
#include <string>
#include <vector>

#include "tests/explorer/World.h"

namespace korvane::explorer {

/// "row HOST VIEW" for each row of the view tables, "view VIEW" for each view.
std::set<std::string> allRowsAndViews();
/// Those by which the screens of the stack came to be shown; `complaint` tells of one that nobody lists.
std::vector<std::string> rowsAndViews(const std::vector<std::string>& stack, std::string& complaint);

/// What is wrong with the world that `step` led to, or "".
std::string wrongAfter(const ScreenSnapshot& before, const Step& step, const World& world);

}  // namespace korvane::explorer
