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
    readonly property string spokenName: text + ", " + modelData.spokenValue
    readonly property string spokenDescription: modelData.copyable ? copyHint : ""

    objectName: control?.name ?? ""
    text: control?.label ?? ""
    enabled: control?.usable ?? false
    focusPolicy: Qt.TabFocus
    topPadding: 9
    bottomPadding: 9
    implicitHeight: implicitContentHeight + topPadding + bottomPadding

    Accessible.name: spokenName
    Accessible.description: spokenDescription

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
            visible: row.activeFocus && InputMode.focusShown
        }
    }

    contentItem: Column {
        leftPadding: row.mirrored ? row.indicator.width + 16 : 0
        spacing: 2

        Text {
            width: row.availableWidth - row.indicator.width - 16
            text: row.text
            font: Theme.caption
            color: Theme.inputLabel
            textFormat: Text.PlainText
            wrapMode: Text.Wrap

            Accessible.ignored: true
        }

        CardValue {
            width: row.availableWidth - row.indicator.width - 16
            height: implicitHeight
            detail: row.modelData
            mirrored: row.mirrored

            Accessible.role: Accessible.StaticText

            FocusRing {
                radius: 4
                visible: parent.activeFocus
            }
        }
    }

    indicator: Artwork {
        x: row.mirrored ? 0 : row.width - width
        y: Math.round((row.height - height) / 2)
        width: 20
        height: 20
        name: "doc.on.doc"
        color: Theme.primary
        visible: row.modelData.copyable
    }
}
