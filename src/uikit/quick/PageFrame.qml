// SPDX-License-Identifier: Apache-2.0
pragma ComponentBehavior: Bound
import QtQuick
import Korvane

/// What screens have in common: back and close at the top, a column that scrolls when it must, the buttons at the
/// foot.
FocusScope {
    id: frame

    required property ScreenModel screen
    /// The column stands in the middle of the free height.
    property bool centred: false
    readonly property bool compact: width < 360 || height < 600
    /// A phone on its side: every row counts.
    readonly property bool low: height < 440
    readonly property real columnWidth: Math.min(width - 48, 416)
    readonly property alias footerHeight: footer.height
    default property alias content: column.data
    readonly property Item focused: Window.activeFocusItem

    focus: true

    // Keys must not reach what lies outside the visible part.
    onFocusedChanged: {
        if (!focused || !isInColumn(focused))
            return;
        const top = focused.mapToItem(scroll.contentItem, 0, 0).y;
        if (top < scroll.contentY)
            scroll.contentY = Math.max(0, top - 16);
        else if (top + focused.height > scroll.contentY + scroll.height)
            scroll.contentY = top + focused.height + 16 - scroll.height;
    }

    // A keyboard alone reaches words that have no control beside them.
    Keys.onPressed: event => {
        const page = scroll.height * 0.8;
        const step = ({
                [Qt.Key_Down]: 48,
                [Qt.Key_Up]: -48,
                [Qt.Key_PageDown]: page,
                [Qt.Key_PageUp]: -page
            })[event.key];
        event.accepted = scroll.interactive && step !== undefined;
        if (event.accepted)
            scroll.contentY = Math.max(0, Math.min(scroll.contentHeight - scroll.height, scroll.contentY + step));
    }

    function isInColumn(item: Item): bool {
        let above = item;
        while (above && above !== column)
            above = above.parent;
        return above === column;
    }

    Item {
        id: header

        width: parent.width
        height: !frame.low || frame.screen.backShown || frame.screen.close ? 56 : 8

        IconButton {
            anchors.left: parent.left
            anchors.leftMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            control: frame.screen.back
            visible: frame.screen.backShown && control !== null
        }

        IconButton {
            anchors.right: parent.right
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            control: frame.screen.close
            visible: control !== null
        }
    }

    Flickable {
        id: scroll

        anchors.top: header.bottom
        anchors.bottom: footer.top
        width: parent.width
        contentHeight: column.y + column.height + 24
        boundsBehavior: Flickable.StopAtBounds
        interactive: contentHeight > height
        clip: interactive

        Column {
            id: column

            x: (scroll.width - width) / 2
            y: frame.centred ? Math.max(8, (scroll.height - height) * 0.42) : 8
            width: frame.columnWidth
        }
    }

    // There is more below.
    Rectangle {
        anchors.bottom: footer.top
        width: parent.width
        height: 1
        color: Theme.outline
        visible: scroll.interactive && !scroll.atYEnd
    }

    Grid {
        id: footer

        anchors.bottom: parent.bottom
        anchors.horizontalCenter: parent.horizontalCenter
        width: frame.columnWidth
        columns: frame.low ? Math.max(1, buttons.count) : 1
        topPadding: buttons.count === 0 ? 0 : 8
        bottomPadding: buttons.count === 0 ? 0 : frame.low ? 8 : 24
        spacing: 8

        Repeater {
            id: buttons

            model: frame.screen.buttons

            KorvaneButton {
                required property ControlModel modelData

                width: (footer.width - footer.spacing * (footer.columns - 1)) / footer.columns
                control: modelData

                Component.onCompleted: focus = control.primary && frame.screen.layout === ScreenModel.Message && !InputMode.titleFirst()
            }
        }
    }
}
