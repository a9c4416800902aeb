// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace korvane {

/// Texts by localization key.
class StringTable {
  public:
    virtual ~StringTable() = default;

    /// The text for `key`, UTF-8: from the component's own table, else from the host's, else the key itself.
    /// Main thread.
    virtual std::string text(std::string_view key) const = 0;

    /// The language of its texts (BCP 47: "es-MX"); empty: not known. Main thread.
    virtual std::string language() const { return {}; }
};

/// A table without texts: every key stands for itself. For consoles and tests.
class KeyStringTable final : public StringTable {
  public:
    std::string text(std::string_view key) const override { return std::string{key}; }
};

}  // namespace korvane
