// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Korvane

/// A line of a list with its symbol in front.
Item {
    id: line

    required property BulletModel modelData

    implicitWidth: 40 + words.implicitWidth
    implicitHeight: Math.max(24, words.implicitHeight)

    Artwork {
        anchors.left: parent.left
        y: Math.round((Math.min(24, words.implicitHeight) - height) / 2)
        width: 24
        height: 24
        name: line.modelData.symbol
        color: line.modelData.advised ? Theme.success : Theme.errorText
    }

    Text {
        id: words

        anchors.left: parent.left
        anchors.leftMargin: 40
        anchors.right: parent.right
        text: line.modelData.text
        font: Theme.body
        color: Theme.colorOnBackground
        textFormat: Text.PlainText
        wrapMode: Text.Wrap
        lineHeight: 1.2

        Accessible.role: Accessible.ListItem
        Accessible.name: text
    }
}
