// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Korvane

/// A part of what the bank must tell about the card.
Text {
    font: Theme.caption
    color: Theme.hintText
    textFormat: Text.PlainText
    wrapMode: Text.Wrap
    lineHeight: 1.2

    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
