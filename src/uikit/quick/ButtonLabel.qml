// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Korvane

/// The words on a button, or a turning wheel in their place while its call is under way.
Item {
    id: label

    property alias text: words.text
    property alias font: words.font
    property alias color: words.color
    property bool busy: false

    implicitHeight: words.implicitHeight

    Text {
        id: words

        anchors.fill: parent
        anchors.leftMargin: 24
        anchors.rightMargin: 24
        visible: !label.busy
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        textFormat: Text.PlainText
        wrapMode: Text.Wrap

        Accessible.ignored: true
    }

    Spinner {
        anchors.centerIn: parent
        width: 24
        visible: label.busy
        color: Theme.primary
    }
}
