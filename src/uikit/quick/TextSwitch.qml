// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Templates as T
import Korvane

/// Shows or hides what others should not see. Its words tell what a tap does.
T.AbstractButton {
    id: button

    required property ControlModel control
    readonly property color ink: (control?.usable ?? false) ? Theme.primary : Theme.disabledText

    objectName: control?.name ?? ""
    text: control?.label ?? ""
    enabled: control?.usable ?? false
    focusPolicy: Qt.TabFocus
    implicitWidth: implicitContentWidth
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
            visible: button.activeFocus && InputMode.focusShown
        }
    }

    contentItem: InfoLabel {
        text: button.text
        font: Theme.button
        color: button.ink
        symbol: button.control?.on ? "eye.slash" : "eye"
        symbolColor: button.ink
    }
}
