// SPDX-License-Identifier: Apache-2.0
pragma ComponentBehavior: Bound
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
    palette { button: Theme.secondary; buttonText: Theme.primary }

    header: Pane {
        height: 56
        Label {
            anchors.verticalCenter: parent.verticalCenter
            text: window.host.result === "" ? "Korvane Bank" : "Result: " + window.host.result
            font: Theme.button
        }
        RoundButton {
            objectName: "host.close"
            anchors { right: parent.right; verticalCenter: parent.verticalCenter }
            visible: journeys.count > 0
            text: "Close"
            onClicked: window.host.close("CLOSED BY THE HOST")
        }
    }

    ListView {
        anchors { fill: parent; leftMargin: window.margin; rightMargin: window.margin }
        visible: journeys.count === 0
        topMargin: 16
        spacing: 8
        model: window.host.cards
        delegate: Rectangle {
            id: row
            required property string cardId
            required property string name
            width: ListView.view.width
            height: 80
            radius: 16
            border.color: Theme.outline
            Label {
                anchors { left: parent.left; leftMargin: 16; verticalCenter: parent.verticalCenter }
                text: row.name
            }
            RoundButton {
                objectName: "setPin:" + row.cardId
                anchors { right: parent.right; rightMargin: 16; verticalCenter: parent.verticalCenter }
                padding: 16
                text: "Set PIN"
                onClicked: window.host.open(row.cardId)
            }
        }
    }

    Repeater {
        id: journeys
        model: window.host.openCard === "" ? 0 : 1
        SetPIN {
            anchors.fill: parent
            cardId: window.host.openCard
            onClosed: result => window.host.close(result)
        }
    }

    RoundButton {
        objectName: "host.sms"
        parent: window.header.parent
        visible: window.host.sms !== ""
        anchors { left: parent.left; right: parent.right; margins: window.margin }
        y: 8 - window.header.height
        z: 1
        height: 64
        radius: 16
        palette { button: Theme.colorOnBackground; buttonText: Theme.background }
        text: window.host.sms + " is your code. Tap to fill it in."
        focusPolicy: Qt.NoFocus
        onClicked: window.host.fillCode()
    }
}
