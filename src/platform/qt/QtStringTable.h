// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/StringTable.h>

#include <QString>
#include <memory>

class QTranslator;

namespace korvane {

/// Texts from id-based Qt translations: the component's own table first, which is not installed in the
/// application and so never stands in for a text of the host's, then the translators that the host installed,
/// then the key. An empty translation counts as none: a label is never blank.
class QtStringTable final : public StringTable {
  public:
    /// Starts without a table of its own.
    QtStringTable();
    ~QtStringTable() override;

    /// Takes the compiled translation (.qm) at `path`, a file or a resource (":/…"), in place of the one in
    /// use; false, and no change, when it cannot be read. Screens that are shown must be asked for their
    /// texts anew. Main thread.
    bool load(const QString& path);

    std::string text(std::string_view key) const override;

  private:
    std::unique_ptr<QTranslator> own_;
};

}  // namespace korvane
