import QtQuick

// A segmented switch of the storage header: one button per option, the chosen one in the
// accent colour. `options` holds { title, symbol } entries; a button is named
// `objectNamePrefix + title` for tests. Emits `picked(index)`; the owner sets `currentIndex`.
Rectangle {
    id: segmented

    required property var theme
    required property var options
    required property int currentIndex
    property string objectNamePrefix

    signal picked(int index)

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
            model: segmented.options

            StorageButton {
                required property var modelData
                required property int index
                objectName: segmented.objectNamePrefix + modelData.title
                theme: segmented.theme
                symbol: modelData.symbol
                text: modelData.title
                highlighted: segmented.currentIndex === index
                onClicked: segmented.picked(index)
            }
        }
    }
}
