// SPDX-License-Identifier: Apache-2.0
pragma ComponentBehavior: Bound
import QtQuick
import Korvane

/// A screen that tells something: a picture, words, and what to do next.
PageFrame {
    id: page

    centred: true

    Artwork {
        anchors.horizontalCenter: parent.horizontalCenter
        width: page.compact ? 80 : 144
        height: width
        visible: name !== ""
        name: page.screen.image
    }

    PageTitle {
        width: parent.width
        topPadding: page.compact ? 16 : 32
        horizontalAlignment: Text.AlignHCenter
        text: page.screen.title
        compact: page.compact
    }

    PageBody {
        width: parent.width
        topPadding: page.compact ? 8 : 16
        horizontalAlignment: Text.AlignHCenter
        lines: page.screen.body
    }

    Column {
        anchors.horizontalCenter: parent.horizontalCenter
        topPadding: page.compact ? 16 : 24
        spacing: page.compact ? 8 : 16
        visible: bullets.count > 0

        Accessible.role: Accessible.List

        Repeater {
            id: bullets

            model: page.screen.bullets

            BulletLine {
                anchors.left: parent?.left
                width: Math.min(implicitWidth, page.columnWidth)
            }
        }
    }
}
