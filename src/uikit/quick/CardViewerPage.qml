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
            wrapMode: Text.Wrap

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

    Repeater {
        model: page.screen.disclosure

        // Of a very long text, what is out of sight comes after the first frame.
        Loader {
            required property string modelData
            required property int index

            width: page.columnWidth
            asynchronous: index > 0

            Component.onCompleted: setSource("DisclosurePart.qml", {
                "text": modelData,
                "topPadding": index === 0 ? 16 : 0
            })
        }
    }
}
