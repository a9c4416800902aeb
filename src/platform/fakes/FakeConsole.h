// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>
#include <korvane/platform/Console.h>

#include <mutex>
#include <string>
#include <vector>

namespace korvane {

/// Keeps the lines. Any thread.
class KORVANE_API FakeConsole final : public Console {
  public:
    void line(std::string_view text) override;

    /// Every line kept so far, oldest first.
    std::vector<std::string> lines() const;
    bool has(std::string_view line) const;           ///< some line is exactly this
    std::size_t count(std::string_view line) const;  ///< how many lines are exactly this
    void clear();                                    ///< forgets the lines
    void keepLines(bool keep);                       ///< off for very long runs

  private:
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
    bool keep_ = true;
};

}  // namespace korvane
