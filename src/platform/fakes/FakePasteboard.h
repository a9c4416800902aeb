// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/Pasteboard.h>

namespace korvane {

/// Remembers what was put last.
class FakePasteboard final : public Pasteboard {
  public:
    void setString(const std::string& text) override { text_ = text; }
    const std::string& text() const { return text_; }

  private:
    std::string text_;
};

}  // namespace korvane
