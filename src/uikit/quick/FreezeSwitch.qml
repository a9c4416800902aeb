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
    /// It works, or would if nothing lay over it.
    readonly property bool live: busy || (control?.usable ?? false)
    readonly property string spokenDescription: control?.busyText ?? ""

    objectName: control?.name ?? ""
    text: control?.label ?? ""
    enabled: control?.usable ?? false
    focusPolicy: Qt.TabFocus
    implicitHeight: Math.max(64, implicitContentHeight + 24)

    Accessible.role: Accessible.CheckBox
    Accessible.checkable: true
    Accessible.checked: on
    Accessible.description: spokenDescription

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
            visible: row.activeFocus && InputMode.focusShown
        }
    }

    contentItem: Text {
        leftPadding: row.mirrored ? row.indicator.width + 16 : 0
        rightPadding: row.mirrored ? 0 : row.indicator.width + 16
        text: row.text
        font: Theme.body
        color: row.live ? Theme.colorOnBackground : Theme.disabledText
        verticalAlignment: Text.AlignVCenter
        textFormat: Text.PlainText
        wrapMode: Text.Wrap

        Accessible.ignored: true
    }

    indicator: Rectangle {
        x: row.mirrored ? 0 : row.width - width
        y: Math.round((row.height - height) / 2)
        width: 52
        height: 32
        radius: height / 2
        color: {
            if (!row.live)
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
