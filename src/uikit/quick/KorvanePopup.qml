// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Korvane

/// A question over the screen. Keys stay in it until it is answered; a tap beside it cancels.
FocusScope {
    id: popup

    required property bool open
    required property string header
    required property string body
    required property ControlModel confirm
    required property ControlModel cancel
    /// Of what it covers.
    property real radius: 0

    enabled: open
    visible: scrim.opacity > 0

    // Who presses twice by mistake must not have answered with it.
    onOpenChanged: cancelButton.focus = true

    Rectangle {
        id: scrim

        anchors.fill: parent
        radius: popup.radius
        color: Theme.scrim
        opacity: popup.open ? 1 : 0

        Behavior on opacity {
            NumberAnimation {
                duration: Theme.moveDuration
            }
        }

        MouseArea {
            anchors.fill: parent
            onClicked: popup.cancel.activate()
        }
    }

    Rectangle {
        anchors.centerIn: parent
        width: Math.min(parent.width - 48, 344)
        height: words.height + buttons.height
        radius: 16
        color: Theme.surface
        opacity: scrim.opacity

        Accessible.role: Accessible.Dialog
        Accessible.name: popup.header
        Accessible.description: popup.body

        MouseArea {
            anchors.fill: parent
        }

        Flickable {
            id: words

            width: parent.width
            height: Math.min(contentHeight, popup.height - buttons.height - 32)
            contentHeight: column.height
            boundsBehavior: Flickable.StopAtBounds
            interactive: contentHeight > height
            clip: interactive

            Column {
                id: column

                x: 24
                width: parent.width - 48
                topPadding: 24
                bottomPadding: 24
                spacing: 8

                Text {
                    width: parent.width
                    text: popup.header
                    font: Theme.titleCompact
                    color: Theme.colorOnSurface
                    textFormat: Text.PlainText
                    wrapMode: Text.Wrap

                    Accessible.role: Accessible.Heading
                    Accessible.name: text
                }

                Text {
                    width: parent.width
                    text: popup.body
                    font: Theme.body
                    color: Theme.colorOnSurface
                    textFormat: Text.PlainText
                    wrapMode: Text.Wrap
                    lineHeight: 1.2

                    Accessible.role: Accessible.StaticText
                    Accessible.name: text
                }
            }
        }

        Column {
            id: buttons

            anchors.bottom: parent.bottom
            x: 24
            width: parent.width - 48
            bottomPadding: 24
            spacing: 8

            KorvaneButton {
                id: confirmButton

                width: parent.width
                control: popup.confirm

                KeyNavigation.tab: cancelButton
                KeyNavigation.backtab: cancelButton
            }

            KorvaneButton {
                id: cancelButton

                width: parent.width
                control: popup.cancel
                focus: true

                KeyNavigation.tab: confirmButton
                KeyNavigation.backtab: confirmButton
            }
        }
    }
}
