import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import "../components"

// The orphaned leftovers: a warning header, then one row per item with its kind, name, path,
// size and a "Trash" button.
Card {
    id: list

    required property var scanner
    readonly property var labels: scanner.labels

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 18
        spacing: 12

        RowLayout {
            spacing: 10
            Icon { name: "exclamationmark.triangle.fill"; size: 22; color: list.theme.secondaryAccent }
            ColumnLayout {
                spacing: 2
                Layout.fillWidth: true
                Text {
                    text: list.labels.orphansTitle
                    color: list.theme.textPrimary
                    font.pixelSize: 15
                    font.bold: true
                }
                Text {
                    text: list.labels.orphansText
                    color: list.theme.textSecondary
                    font.pixelSize: 12
                    wrapMode: Text.WordWrap
                    Layout.fillWidth: true
                }
            }
        }

        ListView {
            id: orphans
            objectName: "orphanList"
            clip: true
            spacing: 6
            Layout.fillWidth: true
            Layout.fillHeight: true
            model: list.scanner.orphanedLeftovers
            delegate: RowLayout {
                id: orphanRow
                required property var modelData
                width: orphans.width
                height: 46
                spacing: 10
                Icon { name: orphanRow.modelData.typeIcon; size: 18; color: list.theme.accent }
                ColumnLayout {
                    spacing: 1
                    Layout.fillWidth: true
                    Text {
                        text: orphanRow.modelData.name
                        color: list.theme.textPrimary
                        font.pixelSize: 13
                        elide: Text.ElideRight
                        Layout.fillWidth: true
                    }
                    Text {
                        text: orphanRow.modelData.displayPath
                        color: list.theme.textSecondary
                        font.pixelSize: 11
                        elide: Text.ElideMiddle
                        Layout.fillWidth: true
                    }
                }
                Text { text: orphanRow.modelData.sizeText; color: list.theme.textPrimary; font.pixelSize: 12 }
                ThemedButton {
                    objectName: "trashOrphanButton"
                    theme: list.theme
                    text: list.labels.trashButton
                    symbol: "trash.fill"
                    enabled: !list.scanner.isRemoving
                    onClicked: list.scanner.trashOrphan(orphanRow.modelData.itemId)
                }
            }
        }
    }
}
