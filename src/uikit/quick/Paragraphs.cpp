// SPDX-License-Identifier: Apache-2.0
#include "uikit/quick/Paragraphs.h"

namespace korvane {

QStringList paragraphs(const QString& text) {
    constexpr qsizetype most = 1000;
    QStringList parts;
    qsizetype at = 0;
    while (text.size() - at > most) {
        const QStringView next = QStringView(text).mid(at, most + 1);
        qsizetype end = next.lastIndexOf(u'\n');
        if (end < 0) end = next.lastIndexOf(u' ');
        const bool isBreak = end > 0 || next[0] == u'\n';
        if (!isBreak) end = next[most].isLowSurrogate() ? most - 1 : most;
        parts.append(next.first(end).toString());
        at += end + (isBreak ? 1 : 0);
    }
    if (at < text.size()) parts.append(text.mid(at));
    return parts;
}

}  // namespace korvane
