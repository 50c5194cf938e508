import QtQuick
import Sondrel

// The treemap visualiser: the threshold bar and "Up Level" above the treemap canvas with its
// overlays and context menu. Drilling down plays a short zoom-in transition.
Item {
    id: pane

    required property var navigator
    required property var theme

    signal folderDropped(string path)
    signal uninstallRequested(string path)

    ThresholdFilterBar {
        id: filterBar
        anchors.top: parent.top
        anchors.left: parent.left
        canvas: canvas
        theme: pane.theme
    }

    // Tiles too small for a label still say what they are while the pointer is on them.
    Text {
        objectName: "treemapHoverReadout"
        anchors.left: filterBar.right
        anchors.leftMargin: 12
        anchors.right: upLevel.left
        anchors.rightMargin: 12
        anchors.verticalCenter: filterBar.verticalCenter
        horizontalAlignment: Text.AlignRight
        elide: Text.ElideMiddle
        text: canvas.hoverText
        color: pane.theme.textSecondary
        font.pixelSize: 12
    }

    StorageButton {
        id: upLevel
        objectName: "treemapUpLevel"
        anchors.right: parent.right
        anchors.verticalCenter: filterBar.verticalCenter
        theme: pane.theme
        bordered: true
        symbol: "arrow.up.circle.fill"
        text: "Up Level"
        enabled: pane.navigator.canGoUp
        onClicked: pane.navigator.goUp()
    }

    TreemapCanvasView {
        id: canvas
        objectName: "treemapCanvas"
        anchors.top: filterBar.bottom
        anchors.topMargin: 10
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        navigator: pane.navigator
        theme: pane.theme
        focus: true
        onFolderDropped: path => pane.folderDropped(path)
        onUninstallRequested: path => pane.uninstallRequested(path)
        onContextMenuRequested: (x, y) => contextMenu.popup(canvas, x, y)

        CanvasOverlays {
            anchors.fill: parent
            canvas: canvas
            theme: pane.theme
            emptySymbol: "square.grid.2x2"
        }
        StorageContextMenu {
            id: contextMenu
            canvas: canvas
            details: pane.navigator.details
        }
    }

    DrillTransition {
        target: canvas
        navigator: pane.navigator
    }
}
