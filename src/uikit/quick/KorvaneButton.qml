// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Templates as T
import Korvane

/// A button at the foot of a screen: filled when it carries the task on, quiet otherwise.
T.AbstractButton {
    id: button

    required property ControlModel control
    readonly property bool primary: control?.primary ?? false
    readonly property bool usable: control?.usable ?? false
    readonly property bool busy: control?.busy ?? false
    readonly property color ink: {
        if (!usable)
            return Theme.disabledText;
        return primary ? Theme.colorOnPrimary : Theme.colorOnSecondary;
    }

    objectName: control?.name ?? ""
    text: control?.label ?? ""
    enabled: usable
    focusPolicy: Qt.TabFocus
    implicitWidth: 200
    implicitHeight: Math.max(56, implicitContentHeight + 24)
    font: Theme.button

    onClicked: control.activate()
    Keys.onReturnPressed: button.control.activate()
    Keys.onEnterPressed: button.control.activate()

    background: Rectangle {
        radius: Math.min(Theme.buttonRadius, height / 2)
        border.width: button.primary ? 0 : 1
        border.color: Theme.outline
        color: {
            if (!button.usable)
                return button.primary ? Theme.disabledFill : Theme.background;
            if (button.primary)
                return button.down ? Theme.primaryPressed : Theme.primary;
            return button.down ? Theme.secondaryPressed : Theme.secondary;
        }

        FocusRing {
            radius: Math.min(parent.radius + 4, height / 2)
            visible: button.activeFocus && InputMode.focusShown
        }
    }

    contentItem: ButtonLabel {
        text: button.text
        font: button.font
        color: button.ink
        busy: button.busy

        Announcement {
            anchors.fill: parent
            text: button.control?.busyText ?? ""

            Accessible.role: Accessible.Notification
        }
    }
}
