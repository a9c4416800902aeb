// SPDX-License-Identifier: Apache-2.0
import QtQuick
import QtQuick.Controls.Basic

/// As little as a host app with a window can be: a header and a list of controls, of the same size as the demo's.
ApplicationWindow {
    header: Pane {
        height: 56
        Label { text: "Bare" }
    }

    ListView {
        anchors.fill: parent
        model: 8
        delegate: Button {
            required property int index
            text: "Card " + index
        }
    }
}
