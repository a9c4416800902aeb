// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Templates as T
import Korvane

/// A symbol to tap, at the top of a screen: back, close.
T.AbstractButton {
    id: button

    required property ControlModel control
    readonly property bool usable: control?.usable ?? false

    objectName: control?.name ?? ""
    text: control?.label ?? ""
    enabled: usable
    focusPolicy: Qt.TabFocus
    implicitWidth: 44
    implicitHeight: 44

    onClicked: control.activate()
    Keys.onReturnPressed: button.control.activate()
    Keys.onEnterPressed: button.control.activate()

    background: Rectangle {
        radius: height / 2
        color: button.down ? Theme.disabledFill : "transparent"

        FocusRing {
            anchors.margins: 0
            radius: height / 2
            visible: button.activeFocus && InputMode.focusShown
        }
    }

    contentItem: Item {
        Artwork {
            anchors.centerIn: parent
            width: 24
            height: 24
            name: button.control?.symbol ?? ""
            color: button.usable ? Theme.colorOnBackground : Theme.disabledText
        }
    }
}
