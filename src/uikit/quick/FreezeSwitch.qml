// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Templates as T
import Korvane

/// Tells whether the card is frozen. A tap asks; the switch moves when the card has.
T.AbstractButton {
    id: row

    required property ControlModel control
    readonly property bool on: control?.on ?? false
    readonly property bool busy: control?.busy ?? false

    objectName: control?.name ?? ""
    text: control?.label ?? ""
    enabled: control?.usable ?? false
    focusPolicy: Qt.TabFocus
    implicitHeight: Math.max(64, implicitContentHeight + 24)

    Accessible.role: Accessible.CheckBox
    Accessible.checkable: true
    Accessible.checked: on
    Accessible.description: control?.busyText ?? ""

    onClicked: control.activate()
    Keys.onReturnPressed: row.control.activate()
    Keys.onEnterPressed: row.control.activate()

    background: Rectangle {
        anchors.fill: parent
        anchors.leftMargin: -8
        anchors.rightMargin: -8
        radius: Math.min(Theme.textFieldRadius, height / 2)
        color: row.down ? Theme.disabledFill : "transparent"

        FocusRing {
            anchors.margins: 0
            radius: parent.radius
            visible: row.visualFocus
        }
    }

    contentItem: Item {
        implicitHeight: words.implicitHeight

        Text {
            id: words

            anchors.left: parent.left
            anchors.right: track.left
            anchors.rightMargin: 16
            anchors.verticalCenter: parent.verticalCenter
            text: row.text
            font: Theme.body
            color: row.enabled || row.busy ? Theme.colorOnBackground : Theme.disabledText
            textFormat: Text.PlainText
            wrapMode: Text.WordWrap

            Accessible.ignored: true
        }

        Rectangle {
            id: track

            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            width: 52
            height: 32
            radius: height / 2
            color: {
                if (!row.enabled && !row.busy)
                    return Theme.disabledFill;
                return row.on ? Theme.primary : Theme.disabledText;
            }

            Rectangle {
                readonly property bool atEnd: row.on !== row.mirrored

                x: atEnd ? parent.width - width - 3 : 3
                y: 3
                width: 26
                height: 26
                radius: height / 2
                color: Theme.background

                Behavior on x {
                    NumberAnimation {
                        duration: Theme.moveDuration
                    }
                }

                Spinner {
                    anchors.centerIn: parent
                    width: 18
                    visible: row.busy
                    color: Theme.primary
                }
            }
        }
    }
}
