// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Korvane

/// A turning wheel: a call is under way. It takes no input.
Artwork {
    id: wheel

    height: width
    name: "spinner"

    Accessible.ignored: true

    NumberAnimation on angle {
        running: wheel.visible && !Theme.reducedMotion
        from: 0
        to: 360
        duration: 900
        loops: Animation.Infinite
    }
}
