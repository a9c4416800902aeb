// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Controls.Basic
import Korvane
import KorvaneDemo

/// The host's window: its cards, the journey in their place, the text message over everything.
ApplicationWindow {
    id: window

    required property DemoHost host
    readonly property int margin: Math.max(16, (width - 520) / 2)

    color: Theme.backdrop
    font: Theme.body
    palette.button: Theme.secondary
    palette.buttonText: Theme.primary

    header: ToolBar {
        implicitHeight: 56
        background: Rectangle {
            color: Theme.surface
        }
        Label {
            x: 16
            height: parent.height
            text: journey.active || window.host.result === "" ? "Korvane Bank" : "Result: " + window.host.result
            font: Theme.button
            verticalAlignment: Text.AlignVCenter
        }
        RoundButton {
            objectName: "host.close"
            anchors.right: parent.right
            height: parent.height
            visible: journey.active
            text: "Close"
            padding: 16
            onClicked: window.host.close("CLOSED BY THE HOST")
        }
    }

    ListView {
        anchors.fill: parent
        visible: !journey.active
        topMargin: 16
        spacing: 8
        model: window.host.cards
        delegate: Rectangle {
            id: row
            required property string cardId
            required property string name
            required property string status
            x: window.margin
            width: window.width - 2 * x
            height: 80
            radius: 16
            color: Theme.surface
            border.color: Theme.outline
            Label {
                x: 16
                anchors.verticalCenter: parent.verticalCenter
                text: row.name + "\n" + row.status
            }
            RoundButton {
                objectName: "setPin:" + row.cardId
                anchors.right: parent.right
                anchors.rightMargin: 16
                anchors.verticalCenter: parent.verticalCenter
                height: 44
                padding: 16
                text: "Set PIN"
                onClicked: window.host.open(row.cardId)
            }
        }
    }

    Loader {
        id: journey
        anchors.fill: parent
        active: window.host.openCard !== ""
        sourceComponent: SetPIN {
            cardId: window.host.openCard
            onClosed: result => window.host.close(result)
        }
    }

    RoundButton {
        objectName: "host.sms"
        parent: window.header.parent
        visible: window.host.sms !== ""
        x: window.margin
        y: 8
        z: 1
        width: window.width - 2 * x
        height: 64
        radius: 16
        focusPolicy: Qt.NoFocus
        palette.button: Theme.colorOnBackground
        palette.buttonText: Theme.background
        font: Theme.caption
        text: window.host.sms + " is your code. Tap to fill it in."
        onClicked: window.host.fillCode()
    }
}
