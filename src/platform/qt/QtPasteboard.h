// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/Pasteboard.h>

#include <QMimeData>
#include <QPointer>

namespace korvane {

/// The clipboard of the QGuiApplication; there is none without one. What is put is marked as secret,
/// which clipboard managers take as a request to keep no history of it: it may be a card's number.
///
/// Whether it still holds a value is told by who owns the clipboard, never by reading it: another owner may
/// hang, and X11 waits 5 s for each format that is asked of it.
class QtPasteboard final : public Pasteboard {
  public:
    bool setString(const std::string& text) override;
    void clearIfHolds(const std::string& text) override;

  private:
    QPointer<QMimeData> put_;       ///< the clipboard's; gone when something of this process took its place
    bool ownershipIsTold_ = false;  ///< the platform knows whether another process took it
};

}  // namespace korvane
