// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

#include "sandbox/Database.h"

namespace korvane::sandbox {

/// The cards of a new database: each type in each status as "card-TYPE-active", "card-TYPE-frozen" and
/// "card-TYPE-new" (not yet activated), then "card-unknown-type" and "card-unknown-status". Numbers, names
/// and codes are invented; the numbers pass the check digit test. A pay wallet's number has 19 digits and its
/// CVV four, the longest that a card carries.
std::vector<Card> seedCards();

}  // namespace korvane::sandbox
