// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace korvane {

/// The user's general pasteboard. Main thread only.
class Pasteboard {
  public:
    virtual ~Pasteboard() = default;

    /// Puts `text` (UTF-8) as plain text, in place of what was there. It is card data: an adapter marks it so
    /// that pasteboard managers keep no history of it, where the platform has such a mark. False when there
    /// is no pasteboard to put it on; nothing has changed then.
    virtual bool setString(const std::string& text) = 0;

    /// Empties the pasteboard if it still holds `text`; what somebody else put there since stays.
    virtual void clearIfHolds(const std::string& text) = 0;
};

/// The pasteboard of a device that has none.
class NoPasteboard final : public Pasteboard {
  public:
    bool setString(const std::string&) override { return false; }
    void clearIfHolds(const std::string&) override {}
};

}  // namespace korvane
