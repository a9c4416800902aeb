// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/Timers.h>

#include <memory>
#include <string>

#include "base/Secret.h"

namespace korvane {

/// Card data that a person copied. It is taken off the pasteboard after a minute, and when this object goes,
/// unless something else was copied since: what lies there is read by every app. Main thread.
class CopiedCardData {
  public:
    CopiedCardData() = default;
    ~CopiedCardData();
    CopiedCardData(const CopiedCardData&) = delete;
    CopiedCardData& operator=(const CopiedCardData&) = delete;

    /// Puts `text` on the pasteboard in place of what was copied before. False when there is no pasteboard.
    bool copy(const std::string& text);

  private:
    void clear();

    Wiped<std::string> text_;  // empty: nothing is out
    std::unique_ptr<Timer> timer_;
};

}  // namespace korvane
