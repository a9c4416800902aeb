// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Korvane

/// A journey as the person sees it: one screen at a time, and the moves between them. In a wide window it stands as
/// a panel in the middle.
FocusScope {
    id: root

    required property string cardId
    property alias kind: journey.kind
    /// The screens stand still.
    readonly property bool settled: !moving.running

    /// The journey is over: "SUCCESS", "CANCELED" or "FAILURE".
    signal closed(string result)

    readonly property bool wide: width >= 640 && height >= 480

    focus: true
    implicitWidth: 390
    implicitHeight: 844

    Keys.onEscapePressed: event => event.accepted = journey.current.escape()
    Keys.onBackPressed: event => event.accepted = journey.current.escape()

    JourneyModel {
        id: journey

        cardId: root.cardId
        visible: root.visible && root.Window.visibility !== Window.Hidden
        onAppeared: root.forceActiveFocus()
        onMoved: {
            if (journey.move === JourneyModel.None)
                moving.stop();
            else
                moving.restart();
        }
        onClosed: result => root.closed(result)
    }

    NumberAnimation {
        id: moving

        target: panel
        property: "progress"
        from: 0
        to: 1
        duration: Theme.moveDuration
        easing.type: Easing.OutCubic
    }

    Rectangle {
        anchors.fill: parent
        color: root.wide ? Theme.backdrop : Theme.background
    }

    Rectangle {
        anchors.fill: panel
        anchors.margins: -1
        visible: root.wide
        radius: 17
        color: Theme.outline
    }

    Rectangle {
        id: panel

        /// How far the present move has come, from 0 to 1.
        property real progress: 1

        anchors.centerIn: parent
        width: root.wide ? 480 : root.width
        height: root.wide ? Math.min(root.height - 64, 760) : root.height
        radius: root.wide ? 16 : 0
        color: Theme.background

        Item {
            anchors.fill: parent
            anchors.margins: root.wide ? 8 : 0
            clip: true

            ScreenPage {
                anchors.fill: parent
                screen: journey.even
                current: journey.current === journey.even
                move: journey.move
                progress: panel.progress
            }

            ScreenPage {
                anchors.fill: parent
                screen: journey.odd
                current: journey.current === journey.odd
                move: journey.move
                progress: panel.progress
            }

            // While screens move, a second tap must not land on what has just slid under the finger. Keys go on.
            MouseArea {
                anchors.fill: parent
                enabled: moving.running
                visible: enabled
            }

            Toast {
                anchors.horizontalCenter: parent.horizontalCenter
                anchors.top: parent.top
                anchors.topMargin: 64
                width: Math.min(parent.width - 32, 416)
                text: journey.current.toast
            }
        }
    }
}
