// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/Pasteboard.h>

namespace korvane {

/// Remembers what was put last; can be made one that refuses.
class FakePasteboard final : public Pasteboard {
  public:
    bool setString(const std::string& text) override {
        if (available_) text_ = text;
        return available_;
    }
    void clearIfHolds(const std::string& text) override {
        if (text_ == text) text_.clear();
    }

    /// False: `setString` refuses.
    void setAvailable(bool available) { available_ = available; }
    /// What it holds; empty when nothing was put, or it was cleared.
    const std::string& text() const { return text_; }

  private:
    std::string text_;
    bool available_ = true;
};

}  // namespace korvane
