// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

namespace korvane {

/// A text in parts of at most 1,000 UTF-16 units, each drawn by an item of its own: the time that Qt takes to
/// lay a text out grows with the square of its length. Parts end at a line feed, else at a space, which go,
/// else between two characters. A text that fits is one part, "" is none.
QStringList paragraphs(const QString& text);

}  // namespace korvane
