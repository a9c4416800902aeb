// SPDX-License-Identifier: Apache-2.0
pragma ComponentBehavior: Bound
import QtQuick
import Korvane

/// The paragraphs under a title.
Column {
    id: paragraphs

    required property list<string> lines
    property int horizontalAlignment: Text.AlignLeft

    spacing: 8
    visible: lines.length > 0

    Repeater {
        model: paragraphs.lines

        Text {
            required property string modelData

            width: paragraphs.width
            text: modelData
            font: Theme.body
            color: Theme.colorOnBackground
            horizontalAlignment: paragraphs.horizontalAlignment
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            lineHeight: 1.2

            Accessible.role: Accessible.StaticText
            Accessible.focusable: false
            Accessible.name: text
        }
    }
}
