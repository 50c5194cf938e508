import QtQuick

// "Threshold Filter:" and one button per size threshold; the active one in the accent colour.
Row {
    id: bar

    required property var canvas
    required property var theme

    spacing: 6

    Text {
        anchors.verticalCenter: parent.verticalCenter
        text: "Threshold Filter:"
        color: bar.theme.textSecondary
        font.pixelSize: 12
    }
    Repeater {
        model: bar.canvas ? bar.canvas.sizeThresholds : []

        StorageButton {
            required property var modelData
            objectName: "threshold " + modelData.label
            theme: bar.theme
            text: modelData.label
            highlighted: bar.canvas.minSizeThreshold === modelData.bytes
            onClicked: bar.canvas.minSizeThreshold = modelData.bytes
        }
    }
}
