// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Korvane

/// A sheet that slides up over the screen and explains something.
FocusScope {
    id: modal

    required property bool open
    required property string text
    required property ControlModel control
    /// Of what it covers.
    property real radius: 0

    enabled: open
    visible: scrim.opacity > 0

    Rectangle {
        id: scrim

        anchors.fill: parent
        radius: modal.radius
        color: Theme.scrim
        opacity: modal.open ? 1 : 0

        Behavior on opacity {
            NumberAnimation {
                duration: Theme.moveDuration
            }
        }

        // A tap beside the sheet closes it, and nothing under it is reached.
        MouseArea {
            anchors.fill: parent
            onClicked: modal.control.activate()
        }
    }

    Rectangle {
        id: sheet

        /// Part of the sheet that has come up.
        property real shown: modal.open ? 1 : 0

        x: 8
        y: Math.round(parent.height - (height + 8) * shown)
        width: parent.width - 16
        height: column.height
        radius: 12
        color: Theme.surface

        Accessible.role: Accessible.Dialog
        Accessible.name: modal.text

        Behavior on shown {
            NumberAnimation {
                duration: Theme.moveDuration
                easing.type: Easing.OutCubic
            }
        }

        MouseArea {
            anchors.fill: parent
        }

        Column {
            id: column

            anchors.horizontalCenter: parent.horizontalCenter
            width: Math.min(parent.width - 32, 416)
            topPadding: 24
            bottomPadding: 16
            spacing: 24

            Flickable {
                width: parent.width
                height: Math.min(contentHeight, modal.height - button.height - 80)
                contentHeight: words.height
                boundsBehavior: Flickable.StopAtBounds
                interactive: contentHeight > height
                clip: interactive

                Text {
                    id: words

                    width: parent.width
                    text: modal.text
                    font: Theme.body
                    color: Theme.colorOnSurface
                    textFormat: Text.PlainText
                    wrapMode: Text.Wrap
                    lineHeight: 1.2

                    Accessible.role: Accessible.StaticText
                    Accessible.focusable: false
                    Accessible.name: text
                }
            }

            KorvaneButton {
                id: button

                width: parent.width
                control: modal.control
                focus: true
            }
        }
    }
}
