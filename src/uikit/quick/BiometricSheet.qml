// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Korvane

/// The sheet over a window while a biometric check runs: why, what to do, and a way out. It keeps the keys and the
/// pointer to itself as long as it is open.
FocusScope {
    id: root

    required property BiometricSheetModel sheet
    /// The sheet has a window of its own, and nothing to cover.
    property bool alone: false

    readonly property bool wide: !alone && width >= 640 && height >= 480
    /// A phone on its side: every row counts.
    readonly property bool low: !alone && height < 440
    readonly property real columnWidth: Math.min((wide ? 400 : width - 16) - 32, 416)
    /// Part of the sheet that has come up.
    property real shown: sheet.open ? 1 : 0

    anchors.fill: parent
    z: 2000000 // over the host's popups, which Qt puts at 1000001
    enabled: sheet.open
    visible: sheet.open || shown > 0

    Keys.onEscapePressed: root.sheet.cancel.activate()
    Keys.onBackPressed: root.sheet.cancel.activate()
    Keys.onPressed: event => event.accepted = true

    Accessible.role: Accessible.Dialog
    Accessible.name: sheet.reason
    Accessible.description: sheet.message

    Behavior on shown {
        NumberAnimation {
            duration: Theme.moveDuration
            easing.type: Easing.OutCubic
        }
    }

    Connections {
        function onTold() {
            announcement.text = ""; // the same words may be worth saying again
            announcement.text = root.sheet.message;
            scroll.contentY = Math.max(0, scroll.contentHeight - scroll.height);
            if (!Theme.reducedMotion)
                shaking.restart();
        }

        target: root.sheet
    }

    Rectangle {
        anchors.fill: parent
        visible: !root.alone
        color: Theme.scrim
        opacity: root.shown

        MouseArea {
            anchors.fill: parent
            hoverEnabled: true
            onWheel: wheel => wheel.accepted = true
        }
    }

    Rectangle {
        objectName: "biometricSheet"
        anchors.horizontalCenter: parent.horizontalCenter
        y: {
            if (root.alone)
                return 0;
            return Math.round(root.wide ? (parent.height - height) / 2 + 24 * (1 - root.shown) : parent.height - (height + 8) * root.shown);
        }
        width: root.wide ? 400 : parent.width - (root.alone ? 0 : 16)
        height: root.alone ? parent.height : Math.min(parent.height - 16, column.height + out.height + out.anchors.bottomMargin)
        opacity: root.wide ? root.shown : 1
        radius: root.alone ? 0 : 12
        color: Theme.surface

        // Where the person's text size leaves too little room, the words scroll and the way out stays.
        Flickable {
            id: scroll

            anchors.top: parent.top
            anchors.bottom: out.top
            width: parent.width
            contentHeight: column.height
            boundsBehavior: Flickable.StopAtBounds
            interactive: contentHeight > height
            clip: interactive

            Column {
                id: column

                x: (scroll.width - width) / 2
                width: root.columnWidth
                topPadding: root.low ? 16 : 32
                bottomPadding: root.low ? 8 : 16
                spacing: root.low ? 8 : 16

                Artwork {
                    anchors.horizontalCenter: parent.horizontalCenter
                    width: root.low ? 48 : 96
                    height: width
                    name: "fingerprint"

                    SequentialAnimation on anchors.horizontalCenterOffset {
                        id: shaking

                        running: false
                        loops: 2

                        NumberAnimation {
                            to: 8
                            duration: 50
                        }

                        NumberAnimation {
                            to: -8
                            duration: 100
                        }

                        NumberAnimation {
                            to: 0
                            duration: 50
                        }
                    }
                }

                Text {
                    width: parent.width
                    text: root.sheet.reason
                    font: Theme.button
                    color: Theme.colorOnSurface
                    horizontalAlignment: Text.AlignHCenter
                    textFormat: Text.PlainText
                    wrapMode: Text.Wrap
                    lineHeight: 1.2

                    Accessible.ignored: true
                }

                Item {
                    width: parent.width
                    // Room for two lines, so that nothing moves under a finger when the message changes.
                    height: Math.max(root.low ? 0 : 44, words.implicitHeight)

                    Row {
                        anchors.horizontalCenter: parent.horizontalCenter
                        layoutDirection: Theme.mirrored ? Qt.RightToLeft : Qt.LeftToRight
                        spacing: 8

                        Artwork {
                            width: 20
                            height: 20
                            visible: root.sheet.trouble
                            name: "exclamationmark.circle"
                            color: Theme.errorText
                        }

                        Text {
                            id: words

                            objectName: "biometricMessage"
                            width: Math.min(implicitWidth, root.columnWidth - (root.sheet.trouble ? 28 : 0))
                            text: root.sheet.message
                            font: Theme.body
                            color: Theme.colorOnSurface
                            horizontalAlignment: {
                                if (!root.sheet.trouble)
                                    return Text.AlignHCenter;
                                return Theme.mirrored ? Text.AlignRight : Text.AlignLeft;
                            }
                            textFormat: Text.PlainText
                            wrapMode: Text.Wrap
                            lineHeight: 1.2

                            Accessible.ignored: true
                        }
                    }

                    Announcement {
                        id: announcement

                        anchors.fill: parent

                        Accessible.role: Accessible.Notification
                    }
                }
            }
        }

        KorvaneButton {
            id: out

            anchors.bottom: parent.bottom
            anchors.bottomMargin: root.low ? 8 : 16
            anchors.horizontalCenter: parent.horizontalCenter
            width: root.columnWidth
            control: root.sheet.cancel
            focus: true

            // There is nowhere else to go.
            Keys.onTabPressed: event => event.accepted = true
            Keys.onBacktabPressed: event => event.accepted = true
        }
    }
}
