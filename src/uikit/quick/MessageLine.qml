// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Korvane

/// An error that the person can put right on the spot. A symbol stands with it: colour alone tells too little.
Item {
    id: line

    property string text
    property real topPadding: 0

    objectName: "message"
    visible: text !== ""
    implicitHeight: topPadding + Math.max(24, words.implicitHeight)

    Announcement {
        anchors.fill: parent
        text: line.text

        Accessible.role: Accessible.Notification
    }

    Artwork {
        anchors.left: parent.left
        y: line.topPadding
        width: 20
        height: 20
        name: "exclamationmark.circle"
        color: Theme.errorText
    }

    Text {
        id: words

        anchors.left: parent.left
        anchors.leftMargin: 28
        anchors.right: parent.right
        y: line.topPadding
        text: line.text
        font: Theme.caption
        color: Theme.errorText
        textFormat: Text.PlainText
        wrapMode: Text.Wrap
        lineHeight: 1.2

        Accessible.ignored: true
    }
}
