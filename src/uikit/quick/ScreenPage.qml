// SPDX-License-Identifier: Apache-2.0
import QtQuick
import Korvane

/// One of the two places in which screens are drawn. They take turns: one holds the screen shown now, the other the
/// one that leaves.
FocusScope {
    id: page

    required property ScreenModel screen
    required property bool current
    required property int move
    required property real progress
    property real radius: 0

    /// Of `ScreenModel.layout`, in its order.
    readonly property list<string> arrangements: ["WaitingPage.qml", "EntryPage.qml", "MessagePage.qml", "CardViewerPage.qml"]
    readonly property real footerHeight: (loader.item as PageFrame)?.footerHeight ?? 0
    readonly property bool above: current ? move !== JourneyModel.Pop : move === JourneyModel.Pop
    readonly property bool slides: move === JourneyModel.Push || move === JourneyModel.Pop
    /// 0: in its place; 1: beyond the edge where lines end; negative: pushed a little the other way, under the other.
    readonly property real offset: {
        if (!slides)
            return 0;
        const gone = current ? 1 - progress : progress;
        return above ? gone : gone * -0.3;
    }

    objectName: current ? screen.view : ""
    focus: current
    enabled: current
    visible: current || progress < 1
    z: above ? 1 : 0
    opacity: move === JourneyModel.Replace && current ? progress : 1
    transform: Translate {
        x: page.offset * (Theme.mirrored ? -page.width : page.width)
    }

    Rectangle {
        anchors.fill: parent
        radius: page.radius
        color: Theme.background
    }

    Loader {
        id: loader

        anchors.fill: parent
        focus: true
        active: page.visible

        function draw() {
            setSource(page.arrangements[page.screen.layout], {
                "screen": page.screen
            });
        }

        Component.onCompleted: draw()
    }

    Connections {
        function onLoaded() {
            loader.draw();
        }

        target: page.screen
    }
}
