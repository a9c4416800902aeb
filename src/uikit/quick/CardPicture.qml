// SPDX-License-Identifier: Apache-2.0
pragma ComponentBehavior: Bound
import QtQuick
import Korvane

/// The card as it looks, and over it what keeps it from being used. Words that do not fit on it stand below.
Item {
    id: picture

    required property CardModel card
    readonly property bool fits: words.implicitHeight <= face.height - 24

    implicitHeight: fits ? face.height : face.height + 12 + words.implicitHeight

    CardFaceItem {
        id: face

        width: parent.width
        height: implicitHeight
        card: picture.card

        Accessible.role: Accessible.Graphic
        Accessible.name: picture.card.description
    }

    // What is on a card stands where it stands, in every language.
    Item {
        anchors.fill: face
        LayoutMirroring.enabled: false
        LayoutMirroring.childrenInherit: true

        Artwork {
            x: Math.round(parent.width - width - parent.width * 0.055)
            y: Math.round(parent.width * 0.055)
            width: Math.round(parent.width * 0.085)
            height: width
            name: "contactless_icon"
            color: picture.card.frozen ? Theme.colorOnBackground : face.upperInk
        }

        Artwork {
            x: Math.round(parent.width - width - parent.width * 0.055)
            y: Math.round(parent.height - height - parent.width * 0.035)
            width: Math.round(parent.width * 0.17)
            height: width
            name: picture.card.networkLogo
            color: picture.card.frozen ? Theme.colorOnBackground : face.lowerInk
        }
    }

    Rectangle {
        anchors.fill: face
        radius: face.radius
        color: Theme.background
        opacity: picture.card.frozen ? 0.92 : 0.56
        visible: words.visible
    }

    Rectangle {
        anchors.fill: face
        radius: face.radius
        color: "transparent"
        border.color: Theme.outline
    }

    Column {
        id: words

        x: 16
        y: picture.fits ? Math.round((face.height - height) / 2) : face.height + 12
        width: parent.width - 32
        spacing: 4
        visible: picture.card.frozen || activate.visible

        Artwork {
            anchors.horizontalCenter: parent.horizontalCenter
            width: 32
            height: 32
            visible: picture.card.frozen
            name: "snowflake"
            color: Theme.primary
        }

        Repeater {
            model: picture.card.message

            Text {
                required property string modelData
                required property int index

                width: words.width
                text: modelData
                font: index === 0 ? Theme.button : Theme.caption
                color: Theme.colorOnBackground
                horizontalAlignment: Text.AlignHCenter
                textFormat: Text.PlainText
                wrapMode: Text.Wrap

                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
        }

        KorvaneButton {
            id: activate

            anchors.horizontalCenter: parent.horizontalCenter
            width: Math.min(parent.width, 240)
            visible: control !== null
            control: picture.card.button
        }
    }
}
