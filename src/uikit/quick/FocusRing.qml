// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Korvane

/// Shows which control the keys go to.
Rectangle {
    anchors.fill: parent
    anchors.margins: -4
    color: "transparent"
    border.width: 2
    border.color: Theme.primary
}
