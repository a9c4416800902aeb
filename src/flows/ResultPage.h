// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "flows/Screen.h"

namespace korvane {

/// A full-screen page without input: success, failure, or the card's activation state. All pages are rows of
/// one table.
class ResultPage final : public Screen {
  public:
    enum class Does { goBack, close, activateCard, setPinOnly };

    struct Button {
        std::string_view id;
        Does does;
        CloseResult result = CloseResult::canceled;  ///< for `close`
    };

    struct BulletRow {
        std::string_view symbol;
        std::string_view text;
    };

    struct Row {
        std::string_view view;
        std::string_view image;
        std::string_view title;
        std::vector<std::string_view> body;
        std::vector<Button> buttons;
        std::vector<BulletRow> bullets = {};
    };

    /// The row of that view name; null when it is no page's.
    static const Row* find(std::string_view viewName);
    static std::span<const Row> rows();

    ResultPage(std::shared_ptr<NavigationStack> stack, const Row& row);

    CloseResult closeResult() const override;

  protected:
    std::vector<ScreenControl> controls() override;
    void describeContent(ScreenSnapshot& snapshot) const override;

  private:
    void act(const Button& button);

    const Row& row_;
};

}  // namespace korvane
