// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Templates as T
import Korvane

/// One of the card's details: what it is, its value, and the symbol that says that a tap copies it.
T.AbstractButton {
    id: row

    required property DetailModel modelData
    required property string copyHint
    readonly property ControlModel control: modelData.control

    objectName: control?.name ?? ""
    text: control?.label ?? ""
    enabled: control?.usable ?? false
    focusPolicy: Qt.TabFocus
    implicitHeight: Math.max(60, implicitContentHeight + 16)

    Accessible.name: text + ", " + modelData.spokenValue
    Accessible.description: modelData.copyable ? copyHint : ""

    onClicked: control.activate()
    Keys.onReturnPressed: row.control.activate()
    Keys.onEnterPressed: row.control.activate()

    background: Rectangle {
        anchors.fill: parent
        anchors.leftMargin: -8
        anchors.rightMargin: -8
        radius: Math.min(Theme.textFieldRadius, height / 2)
        color: row.down ? Theme.disabledFill : "transparent"

        Rectangle {
            x: 8
            anchors.bottom: parent.bottom
            width: parent.width - 16
            height: 1
            color: Theme.outline
        }

        FocusRing {
            anchors.margins: 0
            radius: parent.radius
            visible: row.visualFocus
        }
    }

    contentItem: Item {
        implicitHeight: words.implicitHeight

        Column {
            id: words

            anchors.left: parent.left
            anchors.right: mark.left
            anchors.rightMargin: 16
            anchors.verticalCenter: parent.verticalCenter
            spacing: 2

            Text {
                width: parent.width
                text: row.text
                font: Theme.caption
                color: Theme.hintText
                textFormat: Text.PlainText
                wrapMode: Text.WordWrap

                Accessible.ignored: true
            }

            CardValue {
                id: value

                width: parent.width
                height: implicitHeight
                detail: row.modelData
                mirrored: row.mirrored

                Accessible.role: Accessible.StaticText

                FocusRing {
                    radius: 4
                    visible: value.activeFocus
                }
            }
        }

        Artwork {
            id: mark

            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            width: 20
            height: 20
            name: "doc.on.doc"
            color: Theme.primary
            visible: row.modelData.copyable
        }
    }
}
