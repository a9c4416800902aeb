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

    readonly property bool above: current ? move !== JourneyModel.Pop : move === JourneyModel.Pop
    readonly property bool slides: move === JourneyModel.Push || move === JourneyModel.Pop
    /// 0: in its place; 1: beyond the right edge; negative: pushed a little to the left, under the other.
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
        x: page.offset * page.width
    }

    Rectangle {
        anchors.fill: parent
        color: Theme.background
    }

    Loader {
        id: loader

        anchors.fill: parent
        focus: true
        active: page.visible
        sourceComponent: {
            switch (page.screen.layout) {
            case ScreenModel.Entry:
                return entry;
            case ScreenModel.Message:
                return message;
            default:
                return waiting;
            }
        }
    }

    Connections {
        function onLoaded() {
            loader.active = false;
            loader.active = Qt.binding(() => page.visible);
        }

        target: page.screen
    }

    Component {
        id: waiting

        WaitingPage {
            screen: page.screen
        }
    }

    Component {
        id: entry

        EntryPage {
            screen: page.screen
        }
    }

    Component {
        id: message

        MessagePage {
            screen: page.screen
        }
    }
}
