// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/Console.h>

#include <memory>
#include <utility>

namespace korvane {

/// The same lines as the console behind it, with every value masked: PINs, codes, card data, tokens, keys,
/// ids and whatever else was received or deciphered. What is left are the texts of the component's own code,
/// HTTP status codes and the names of screens and operations. For release builds:
///
///     ports.console = std::make_shared<korvane::RedactingConsole>(ports.console);
class RedactingConsole final : public Console {
  public:
    /// @param behind  gets the masked lines; shared, and must not be null
    explicit RedactingConsole(std::shared_ptr<Console> behind) : behind_(std::move(behind)) {}

    void line(std::string_view text) override { behind_->line(text); }
    bool takesSecrets() const override { return false; }

  private:
    std::shared_ptr<Console> behind_;
};

}  // namespace korvane
