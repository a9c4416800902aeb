// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Korvane

/// The title of a screen. It takes the focus when the screen comes, for those who listen to it; Tab leads on from it.
Text {
    id: title

    property bool compact: false

    font: compact ? Theme.titleCompact : Theme.title
    color: Theme.colorOnBackground
    horizontalAlignment: Text.AlignLeft // where lines begin, whatever script the words are in
    textFormat: Text.PlainText
    wrapMode: Text.Wrap
    lineHeight: 1.1

    Accessible.role: Accessible.Heading
    Accessible.name: text
    Accessible.focusable: true
    Accessible.focused: activeFocus

    Component.onCompleted: focus = InputMode.titleFirst()

    FocusRing {
        radius: 4
        visible: title.activeFocus && InputMode.focusShown
    }
}
