// SPDX-License-Identifier: Apache-2.0
import QtQuick

/// What the boxes must not be like: the toolkit's own password field, which the leak test catches.
TextInput {
    width: 200
    height: 40
    focus: true
    echoMode: TextInput.Password
    Accessible.name: "PIN"
    Accessible.role: Accessible.EditableText
}
