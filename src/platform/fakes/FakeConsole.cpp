// SPDX-License-Identifier: Apache-2.0
#include "platform/fakes/FakeConsole.h"

#include <algorithm>

namespace korvane {

void FakeConsole::line(std::string_view text) {
    const std::lock_guard lock(mutex_);
    if (keep_) lines_.emplace_back(text);
}

std::vector<std::string> FakeConsole::lines() const {
    const std::lock_guard lock(mutex_);
    return lines_;
}

bool FakeConsole::has(std::string_view line) const {
    return count(line) > 0;
}

std::size_t FakeConsole::count(std::string_view line) const {
    const std::lock_guard lock(mutex_);
    return static_cast<std::size_t>(std::count(lines_.begin(), lines_.end(), line));
}

void FakeConsole::clear() {
    const std::lock_guard lock(mutex_);
    lines_.clear();
}

void FakeConsole::keepLines(bool keep) {
    const std::lock_guard lock(mutex_);
    keep_ = keep;
}

}  // namespace korvane
