// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Korvane

/// A journey as the person sees it: one screen at a time, and the moves between them. In a wide window it stands as
/// a panel in the middle.
FocusScope {
    id: root

    required property string cardId
    property alias kind: journey.kind
    /// Offers a close control on screens that have no way out of the journey, for a window that has no other. It
    /// closes with "CANCELED".
    property alias closable: journey.closable

    /// The journey is over: "SUCCESS", "CANCELED" or "FAILURE".
    signal closed(string result)

    readonly property bool wide: width >= 640 && height >= 480
    /// What a keyboard on the screen covers, where the window does not make room for it by itself.
    readonly property real keyboardHeight: {
        const keyboard = Qt.inputMethod.keyboardRectangle;
        return Qt.inputMethod.visible && keyboard.height > 0 ? Math.max(0, height - mapFromItem(null, 0, keyboard.y).y) : 0;
    }

    // The types of the pages to come are made ready on the engine's own thread while the first answer is awaited.
    Component.onCompleted: {
        for (const page of ["EntryPage", "MessagePage", "CardViewerPage"])
            Qt.createComponent(page + ".qml", Component.Asynchronous, root);
    }

    focus: true
    LayoutMirroring.enabled: Theme.mirrored
    LayoutMirroring.childrenInherit: true
    implicitWidth: 390
    implicitHeight: 844

    Keys.onEscapePressed: event => event.accepted = journey.current.escape()
    Keys.onBackPressed: event => event.accepted = journey.current.escape()

    JourneyModel {
        id: journey

        cardId: root.cardId
        visible: root.visible && root.Window.visibility !== Window.Hidden
        window: root.Window.window
        onAppeared: root.forceActiveFocus()
        onMoved: {
            moving.restart();
            if (journey.move === JourneyModel.None || Theme.reducedMotion)
                moving.complete();
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
        radius: panel.radius + 1
        color: Theme.outline
    }

    FocusScope {
        id: panel

        /// How far the present move has come, from 0 to 1.
        property real progress: 1
        readonly property real radius: root.wide ? 16 : 0
        readonly property bool covered: journey.current.sheetOpen || journey.current.popupOpen

        anchors.horizontalCenter: parent.horizontalCenter
        y: root.wide ? Math.round((root.height - height) / 2) : 0
        width: root.wide ? 480 : root.width
        height: root.wide ? Math.min(root.height - 64, 760) : root.height - root.keyboardHeight
        focus: true
        clip: true

        FocusScope {
            id: screens

            anchors.fill: parent
            focus: !panel.covered
            enabled: !panel.covered

            ScreenPage {
                id: evenPage

                anchors.fill: parent
                screen: journey.even
                current: journey.current === journey.even
                move: journey.move
                progress: panel.progress
                radius: panel.radius
            }

            ScreenPage {
                id: oddPage

                anchors.fill: parent
                screen: journey.odd
                current: journey.current === journey.odd
                move: journey.move
                progress: panel.progress
                radius: panel.radius
            }

            // While screens move, a second tap must not land on what has just slid under the finger. Keys go on.
            MouseArea {
                anchors.fill: parent
                visible: moving.running
                z: 2
            }
        }

        Toast {
            objectName: "toast"
            anchors.horizontalCenter: parent.horizontalCenter
            anchors.bottom: parent.bottom
            anchors.bottomMargin: (evenPage.current ? evenPage : oddPage).footerHeight + 16
            width: Math.min(parent.width - 48, 416)
            text: journey.current.toast
        }

        KorvaneSlideUpModal {
            anchors.fill: parent
            focus: journey.current.sheetOpen
            open: journey.current.sheetOpen
            text: journey.current.sheetText
            control: journey.current.sheetButton
            radius: panel.radius
        }

        KorvanePopup {
            anchors.fill: parent
            focus: journey.current.popupOpen
            open: journey.current.popupOpen
            header: journey.current.popupHeader
            body: journey.current.popupBody
            confirm: journey.current.popupConfirm
            cancel: journey.current.popupCancel
            radius: panel.radius
        }
    }
}
