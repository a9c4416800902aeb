// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Korvane

/// A short message over the screen. It comes and goes with its text.
Rectangle {
    id: toast

    property string text

    implicitHeight: words.implicitHeight + 24
    radius: 8
    color: Theme.colorOnBackground
    opacity: text === "" ? 0 : 1
    visible: opacity > 0

    onTextChanged: {
        if (text !== "")
            words.text = text;
    }

    Behavior on opacity {
        NumberAnimation {
            duration: Theme.moveDuration
        }
    }

    Announcement {
        anchors.fill: parent
        text: toast.text

        Accessible.role: Accessible.Notification
    }

    Text {
        id: words

        anchors.fill: parent
        anchors.leftMargin: 16
        anchors.rightMargin: 16
        font: Theme.caption
        color: Theme.background
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        textFormat: Text.PlainText
        wrapMode: Text.Wrap

        Accessible.ignored: true
    }
}
