// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Korvane

Window {
    width: 390
    height: 844
    visible: true

    SetPIN {
        anchors.fill: parent
        cardId: "card-physical-active"
        onClosed: result => Qt.exit(result === "SUCCESS" ? 0 : 1)
    }
}
