// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace korvane {

/// The user's general pasteboard.
class Pasteboard {
  public:
    virtual ~Pasteboard() = default;

    /// Puts `text` (UTF-8) as plain text, in place of what was there. Main thread.
    virtual void setString(const std::string& text) = 0;
};

/// The pasteboard of a device that has none: drops the text.
class NoPasteboard final : public Pasteboard {
  public:
    void setString(const std::string&) override {}
};

}  // namespace korvane
