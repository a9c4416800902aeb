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
    palette {
        button: Theme.secondary; buttonText: Theme.primary
        window: Theme.background; windowText: Theme.colorOnBackground
    }

    header: Pane {
        height: 56
        Label {
            anchors.verticalCenter: parent.verticalCenter
            text: window.host.result === "" ? "Korvane Bank" : "Result: " + window.host.result
            font: Theme.button
        }
        Switch {
            objectName: "host.biometrics"
            anchors { right: parent.right; verticalCenter: parent.verticalCenter }
            visible: window.host.journey === ""
            text: "Fingerprint"
            checked: window.host.biometrics
            onToggled: window.host.biometrics = checked
        }
        RoundButton {
            objectName: "host.close"
            anchors { right: parent.right; verticalCenter: parent.verticalCenter }
            visible: window.host.journey !== ""
            text: "Close"
            onClicked: window.host.close("CLOSED BY THE HOST")
        }
    }

    ListView {
        anchors { fill: parent; leftMargin: window.margin; rightMargin: window.margin }
        visible: window.host.journey === ""
        topMargin: 16
        bottomMargin: 16
        spacing: 8
        cacheBuffer: 4000
        model: window.host.cards
        delegate: Rectangle {
            id: row
            required property string cardId
            required property string name
            required property string status
            width: ListView.view.width
            height: column.height
            radius: 16
            color: Theme.background
            border.color: Theme.outline
            Column {
                id: column
                anchors { left: parent.left; right: parent.right; margins: 16 }
                topPadding: 12
                bottomPadding: 8
                Label { text: row.name; font: Theme.button; width: parent.width; elide: Text.ElideRight }
                Label { text: row.status; font: Theme.caption; color: Theme.hintText }
                Row {
                    topPadding: 8
                    spacing: 8
                    Repeater {
                        model: [["setPin:", "Set PIN", "SetPIN"], ["activate:", "Activate", "ActivateCardAndSetPIN"],
                            ["view:", "View card", "GetCardImage"]]
                        RoundButton {
                            required property var modelData
                            objectName: modelData[0] + row.cardId
                            width: (column.width - 16) / 3
                            height: 48
                            font: Theme.caption
                            text: modelData[1]
                            onClicked: window.host.open(modelData[2], row.cardId)
                        }
                    }
                }
            }
        }
    }

    // `SetPIN { cardId: …; onClosed: … }` would do. By name its types are loaded when the first journey opens, and
    // not before the host's first frame: 8 ms.
    Loader {
        id: journey
        anchors.fill: parent
        readonly property string name: window.host.journey
        onNameChanged: {
            if (name === "")
                source = "";
            else
                setSource("qrc:/qt-project.org/imports/Korvane/" + name + ".qml", { cardId: window.host.card });
        }
        Connections {
            target: journey.item
            ignoreUnknownSignals: true
            function onClosed(result) { window.host.close(result); }
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
