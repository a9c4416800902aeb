// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Korvane

/// The title of a screen.
Text {
    property bool compact: false

    font: compact ? Theme.titleCompact : Theme.title
    color: Theme.colorOnBackground
    textFormat: Text.PlainText
    wrapMode: Text.WordWrap
    lineHeight: 1.1

    Accessible.role: Accessible.Heading
    Accessible.name: text
}
