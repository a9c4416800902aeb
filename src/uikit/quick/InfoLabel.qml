// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Korvane

/// Words with a symbol behind them.
Item {
    property alias text: words.text
    property alias symbol: mark.name
    property alias symbolColor: mark.color
    property alias font: words.font
    property alias color: words.color

    implicitWidth: words.implicitWidth + 32
    implicitHeight: words.implicitHeight

    Text {
        id: words

        anchors.left: parent.left
        anchors.verticalCenter: parent.verticalCenter
        width: Math.min(implicitWidth, parent.width - 32)
        font: Theme.body
        color: Theme.hintText
        textFormat: Text.PlainText
        wrapMode: Text.Wrap

        Accessible.ignored: true
    }

    Artwork {
        id: mark

        anchors.left: words.right
        anchors.leftMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        width: 20
        height: 20
        color: Theme.primary
    }
}
