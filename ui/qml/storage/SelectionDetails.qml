import QtQuick
import QtQuick.Controls

// Details of the selected item: name, path with a copy button, size and items, verdict,
// "REMOVAL RATIONALE" and the actions.
Flickable {
    id: selection

    required property var details
    required property var theme

    signal uninstallRequested(string path)

    contentHeight: column.implicitHeight
    clip: true

    Column {
        id: column
        width: selection.width
        spacing: 10

        Row {
            spacing: 8
            StorageSymbol {
                anchors.verticalCenter: parent.verticalCenter
                name: selection.details.selectedIsDirectory ? "folder.fill" : selection.details.selectedCategoryIcon
                size: 22
                tint: selection.details.selectedCategoryColor
            }
            Text {
                anchors.verticalCenter: parent.verticalCenter
                width: column.width - 40
                text: selection.details.selectedName
                elide: Text.ElideMiddle
                color: selection.theme.textPrimary
                font.pixelSize: 16
                font.bold: true
            }
        }
        Row {
            width: column.width
            spacing: 6
            Text {
                width: parent.width - 30
                anchors.verticalCenter: parent.verticalCenter
                text: selection.details.selectedPath
                wrapMode: Text.WrapAnywhere
                color: selection.theme.textSecondary
                font.pixelSize: 11
            }
            StorageButton {
                theme: selection.theme
                symbol: "doc.on.doc"
                leftPadding: 4
                rightPadding: 4
                onClicked: selection.details.copySelectedPath()
            }
        }
        Text {
            text: selection.details.selectedSizeText + "  \u2022  " + selection.details.selectedItemsText
                  + "  \u2022  " + selection.details.selectedShareText + " of folder"
            color: selection.theme.textPrimary
            font.pixelSize: 13
        }
        Text {
            text: selection.details.selectedCategoryName + "  \u2022  " + selection.details.selectedStatusText
            color: selection.details.selectedStatusColor
            font.pixelSize: 12
        }
        Rectangle {
            width: column.width
            height: rationale.implicitHeight + 20
            radius: 8
            color: Qt.darker(selection.theme.cardBackground, 1.15)
            border.color: selection.theme.border
            Column {
                id: rationale
                anchors.fill: parent
                anchors.margins: 10
                spacing: 4
                Text {
                    text: "REMOVAL RATIONALE"
                    color: selection.theme.textSecondary
                    font.pixelSize: 10
                    font.bold: true
                }
                Text {
                    objectName: "rationale"
                    width: parent.width
                    text: selection.details.selectedRationale
                    wrapMode: Text.WordWrap
                    color: selection.theme.textPrimary
                    font.pixelSize: 12
                }
            }
        }
        StorageButton {
            theme: selection.theme
            bordered: true
            symbol: "arrow.up.forward.square"
            text: selection.details.platformText("Reveal in macOS Finder")
            onClicked: selection.details.revealSelected()
        }
        StorageButton {
            visible: selection.details.selectedIsDirectory
            theme: selection.theme
            bordered: true
            symbol: "arrow.right.circle.fill"
            text: "Open Rings"
            ToolTip.visible: hovered
            ToolTip.text: "Drill down into this folder and display its color rings"
            onClicked: selection.details.openSelectedInRings()
        }
        StorageButton {
            visible: selection.details.selectedIsApplication
            theme: selection.theme
            bordered: true
            symbol: "trash.fill"
            text: "Uninstall App & Clean Leftovers"
            onClicked: selection.uninstallRequested(selection.details.selectedPath)
        }
        StorageButton {
            objectName: "clearSelection"
            theme: selection.theme
            bordered: true
            symbol: "xmark.circle.fill"
            text: "Clear selection"
            onClicked: selection.details.clearSelection()
        }
    }
}
