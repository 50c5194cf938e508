import QtQuick

// What a storage canvas shows over itself: the empty state when the threshold hides every
// item ("Reset Filter"), the invitation to drop a folder when there is nothing to show, and
// the drop overlay while a folder hovers.
Item {
    id: overlays

    required property var canvas
    required property var theme
    property string emptySymbol: "square.grid.2x2"

    Column {
        objectName: "emptyState"
        anchors.centerIn: parent
        spacing: 10
        visible: overlays.canvas.isFilteredEmpty && !overlays.canvas.isTargetedForDrop

        StorageSymbol {
            anchors.horizontalCenter: parent.horizontalCenter
            name: overlays.emptySymbol
            size: 40
            tint: overlays.theme.textSecondary
        }
        Text {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "No items matching size threshold"
            color: overlays.theme.textSecondary
            font.pixelSize: 14
        }
        StorageButton {
            objectName: "resetFilter"
            anchors.horizontalCenter: parent.horizontalCenter
            theme: overlays.theme
            bordered: true
            text: "Reset Filter"
            onClicked: overlays.canvas.resetFilter()
        }
    }

    Column {
        anchors.centerIn: parent
        spacing: 10
        visible: overlays.canvas.hasNothingToShow || overlays.canvas.isTargetedForDrop

        StorageSymbol {
            anchors.horizontalCenter: parent.horizontalCenter
            name: overlays.canvas.isTargetedForDrop ? "arrow.down.doc.fill" : "hand.draw"
            size: 40
            tint: overlays.canvas.isTargetedForDrop ? overlays.theme.accent : overlays.theme.textSecondary
        }
        Text {
            anchors.horizontalCenter: parent.horizontalCenter
            text: overlays.canvas.isTargetedForDrop ? "Drop folder to inspect" : "Drop any folder here to scan"
            color: overlays.canvas.isTargetedForDrop ? overlays.theme.accent : overlays.theme.textSecondary
            font.pixelSize: 14
            font.bold: overlays.canvas.isTargetedForDrop
        }
    }
}
