import QtQuick

// The segmented switch between the two visualisers; the chosen one in the accent colour.
Rectangle {
    id: modeSwitch

    required property var navigator
    required property var theme

    implicitWidth: row.implicitWidth + 6
    implicitHeight: row.implicitHeight + 6
    radius: 9
    color: theme.cardBackground
    border.color: theme.border

    Row {
        id: row
        anchors.centerIn: parent
        spacing: 2

        Repeater {
            model: [
                { title: "Color Rings", symbol: "circle.circle.fill" },
                { title: "Treemap", symbol: "square.grid.2x2.fill" }
            ]

            StorageButton {
                required property var modelData
                required property int index
                objectName: "mode " + modelData.title
                theme: modeSwitch.theme
                symbol: modelData.symbol
                text: modelData.title
                highlighted: modeSwitch.navigator.visualizerMode === index
                onClicked: modeSwitch.navigator.visualizerMode = index
            }
        }
    }
}
