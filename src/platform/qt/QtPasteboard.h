// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/Pasteboard.h>

namespace korvane {

/// The clipboard of the QGuiApplication; there is none without one. What is put is marked as secret,
/// which clipboard managers take as a request to keep no history of it: it may be a card's number.
class QtPasteboard final : public Pasteboard {
  public:
    bool setString(const std::string& text) override;
    void clearIfHolds(const std::string& text) override;
};

}  // namespace korvane
