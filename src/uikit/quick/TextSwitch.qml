// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Templates as T
import Korvane

/// Shows or hides what others should not see. Its words tell what a tap does.
T.AbstractButton {
    id: button

    required property ControlModel control

    objectName: control?.name ?? ""
    text: control?.label ?? ""
    enabled: control?.usable ?? false
    focusPolicy: Qt.TabFocus
    implicitWidth: words.implicitWidth + 32
    implicitHeight: Math.max(44, implicitContentHeight + 16)

    onClicked: control.activate()
    Keys.onReturnPressed: button.control.activate()
    Keys.onEnterPressed: button.control.activate()

    background: Rectangle {
        anchors.fill: parent
        anchors.leftMargin: -8
        anchors.rightMargin: -8
        radius: Math.min(Theme.textFieldRadius, height / 2)
        color: button.down ? Theme.disabledFill : "transparent"

        FocusRing {
            anchors.margins: 0
            radius: parent.radius
            visible: button.visualFocus
        }
    }

    contentItem: Item {
        implicitHeight: words.implicitHeight

        Artwork {
            id: symbol

            anchors.left: parent.left
            anchors.verticalCenter: parent.verticalCenter
            width: 22
            height: 22
            name: button.control?.on ? "eye.slash" : "eye"
            color: Theme.primary
        }

        Text {
            id: words

            anchors.left: symbol.right
            anchors.leftMargin: 8
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            text: button.text
            font: Theme.button
            color: Theme.primary
            textFormat: Text.PlainText
            wrapMode: Text.WordWrap

            Accessible.ignored: true
        }
    }
}
