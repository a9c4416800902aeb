// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/StringTable.h>

#include <QHash>
#include <QString>
#include <memory>
#include <utility>

class QTranslator;

namespace korvane {

/// Texts from id-based Qt translations: what the host put in a key's place first, then the component's own
/// table, which is not installed in the application and so never stands in for a text of the host's, then the
/// translators that the host installed, then the key. An empty translation counts as none: a label is never
/// blank. Main thread.
class QtStringTable final : public StringTable {
  public:
    /// Starts without a table of its own.
    QtStringTable();
    ~QtStringTable() override;

    /// Takes the compiled translation (.qm) at `path`, a file or a resource (":/…"), in place of the one in
    /// use; false, and no change, when it cannot be read. Screens that are shown must be asked for their
    /// texts anew.
    ///
    /// @param language  what `language` tells then (BCP 47); empty: what the file says
    bool load(const QString& path, const QString& language = {});

    /// Puts `text` in the place of the key's own text in that language ("de", or "de-CH" for that region
    /// alone; empty: in every language); an empty `text` gives the key its own back.
    void overrideText(const QString& key, const QString& text, const QString& language = {});
    /// The host has put a text in the place of one in that very language.
    bool overrides(const QString& language) const;

    std::string text(std::string_view key) const override;
    std::string language() const override { return language_.toStdString(); }

  private:
    QString overriding(const QString& key) const;

    std::unique_ptr<QTranslator> own_;
    QString language_;
    QHash<std::pair<QString, QString>, QString> overrides_;  ///< by language, in lower case, and key
};

}  // namespace korvane
