// SPDX-License-Identifier: Apache-2.0
pragma ComponentBehavior: Bound
import QtQuick
import Korvane

/// The card with its details, its freeze switch and what the bank must tell about it.
PageFrame {
    id: page

    readonly property string copyHint: screen.body.length > 0 ? screen.body[0] : ""

    PageTitle {
        width: parent.width
        bottomPadding: 16
        text: page.screen.card.name
        compact: true
    }

    CardPicture {
        width: parent.width
        card: page.screen.card
    }

    Flow {
        width: parent.width
        topPadding: page.compact ? 8 : 16

        Text {
            id: heading

            width: Math.min(parent.width, Math.max(implicitWidth, parent.width - reveal.implicitWidth))
            height: Math.max(44, implicitHeight)
            text: page.screen.title
            font: Theme.button
            color: Theme.colorOnBackground
            verticalAlignment: Text.AlignVCenter
            textFormat: Text.PlainText
            wrapMode: Text.WordWrap

            Accessible.role: Accessible.Heading
            Accessible.name: text
        }

        TextSwitch {
            id: reveal

            width: Math.min(implicitWidth, parent.width)
            control: page.screen.revealSwitch
        }
    }

    InfoLabel {
        width: parent.width
        height: implicitHeight + 8
        text: page.copyHint
        font: Theme.caption
        symbol: "doc.on.doc"
    }

    Repeater {
        model: page.screen.details

        CardDetailRow {
            width: page.columnWidth
            copyHint: page.copyHint
        }
    }

    FreezeSwitch {
        width: parent.width
        control: page.screen.freezeSwitch
    }

    Text {
        width: parent.width
        topPadding: 16
        visible: text !== ""
        text: page.screen.disclosure
        font: Theme.caption
        color: Theme.hintText
        textFormat: Text.PlainText
        wrapMode: Text.WrapAtWordBoundaryOrAnywhere
        lineHeight: 1.2

        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }
}
