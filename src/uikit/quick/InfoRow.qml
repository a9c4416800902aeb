// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Templates as T
import Korvane

/// A line of text with a symbol that tells more when tapped.
T.AbstractButton {
    id: row

    required property ControlModel control

    objectName: control?.name ?? ""
    text: control?.label ?? ""
    enabled: control?.usable ?? false
    focusPolicy: Qt.TabFocus
    implicitHeight: Math.max(44, implicitContentHeight + 16)

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

    contentItem: InfoLabel {
        text: row.text
        symbol: row.control?.symbol ?? ""
    }
}
