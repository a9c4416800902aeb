// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Korvane

/// A screen that is not decided yet.
FocusScope {
    id: page

    required property ScreenModel screen

    focus: true

    IconButton {
        anchors.right: parent.right
        anchors.rightMargin: 8
        y: 6
        control: page.screen.close
        visible: control !== null
    }

    Column {
        anchors.centerIn: parent
        width: parent.width - 48
        spacing: 24
        visible: page.screen.spinner

        Spinner {
            anchors.horizontalCenter: parent.horizontalCenter
            width: 48
            color: Theme.primary
        }

        PageBody {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            lines: [page.screen.title]
        }

        Announcement {
            text: page.screen.title

            Accessible.role: Accessible.Notification
        }
    }
}
