// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Korvane

/// The digit boxes of a screen. The outer item speaks to accessibility and knows no digit; the inner one takes the
/// keys and is ignored by it. (Not marked as a password field: that would silence its name, which tells no digit.)
FocusScope {
    id: boxes

    required property ScreenModel screen

    implicitHeight: item.implicitHeight

    Accessible.role: Accessible.EditableText
    Accessible.name: screen.passcodeDescription
    Accessible.focusable: true
    Accessible.focused: item.activeFocus
    Accessible.editable: true
    Accessible.onPressAction: item.forceActiveFocus()

    PasscodeItem {
        id: item

        anchors.fill: parent
        objectName: boxes.screen.passcode?.name ?? ""
        screen: boxes.screen
        focus: true

        Accessible.ignored: true
    }
}
