import QtQuick
import Sondrel

// The colour-ring visualiser: the threshold bar above the ring canvas, the centre display in
// the hole, the overlays and the context menu.
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

    ColorRingsCanvasView {
        id: canvas
        objectName: "ringsCanvas"
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

        CenterHudContent {
            objectName: "centerHud"
            anchors.centerIn: parent
            visible: !canvas.isFilteredEmpty && !canvas.hasNothingToShow && !canvas.isTargetedForDrop
            diameter: canvas.holeRadius * 2
            canvas: canvas
            theme: pane.theme
            onGoUp: pane.navigator.goUp()
        }
        CanvasOverlays {
            anchors.fill: parent
            canvas: canvas
            theme: pane.theme
            emptySymbol: "circle.dashed"
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
