// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Korvane

/// A screen to type digits on.
PageFrame {
    id: page

    PageTitle {
        width: parent.width
        text: page.screen.title
        compact: page.compact
    }

    PageBody {
        width: parent.width
        lines: page.screen.body
        topPadding: 8
    }

    InfoRow {
        width: parent.width
        visible: control !== null
        control: page.screen.row
    }

    Item {
        width: 1
        height: page.compact ? 16 : 32
    }

    PasscodeItem {
        width: parent.width
        objectName: page.screen.passcode?.name ?? ""
        screen: page.screen
        page: page

        Accessible.role: Accessible.EditableText
        Accessible.name: page.screen.passcodeDescription

        Component.onCompleted: focus = !InputMode.titleFirst()
    }

    MessageLine {
        width: parent.width
        topPadding: 16
        text: page.screen.message
    }
}
