import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import "../components"

// One junk group: a header row (selection box, type icon, title and description, count, size,
// "Select All"/"Deselect All", clean button, chevron) and, when expanded, its items. The card
// keeps its expanded state while its row's data changes; a rescan replaces it.
Card {
    id: card

    required property var labels
    required property string groupId
    required property string title
    required property string groupDescription
    required property string icon
    required property string totalText
    required property string countText
    required property string selectionIcon
    required property bool allSelected
    required property bool hasSelection
    required property var items
    property bool isExpanded: false

    signal toggleGroup(string groupId)
    signal toggleItem(string groupId, string itemId)
    signal cleanGroup(string groupId)
    signal revealItem(string itemId)

    implicitHeight: column.implicitHeight + 24

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: 12
        spacing: 6

        RowLayout {
            spacing: 12
            Layout.fillWidth: true

            ToolButton {
                objectName: "groupSelectBox"
                Accessible.name: card.title
                onClicked: card.toggleGroup(card.groupId)
                contentItem: Icon {
                    name: card.selectionIcon
                    size: 20
                    color: card.hasSelection ? card.theme.accent : card.theme.textSecondary
                }
                background: Item {}
            }
            Rectangle {
                width: 36
                height: 36
                radius: 9
                color: Qt.rgba(card.theme.accent.r, card.theme.accent.g, card.theme.accent.b, 0.15)
                Icon {
                    anchors.centerIn: parent
                    name: card.icon
                    size: 18
                    color: card.theme.accent
                }
            }
            ColumnLayout {
                spacing: 2
                Layout.fillWidth: true

                RowLayout {
                    spacing: 8
                    Text {
                        text: card.title
                        color: card.theme.textPrimary
                        font.pixelSize: 15
                        font.bold: true
                    }
                    Text {
                        objectName: "countText"
                        text: card.countText
                        color: card.theme.textSecondary
                        font.pixelSize: 12
                    }
                }
                Text {
                    text: card.groupDescription
                    color: card.theme.textSecondary
                    font.pixelSize: 12
                    elide: Text.ElideRight
                    Layout.fillWidth: true
                }
            }
            Text {
                text: card.totalText
                horizontalAlignment: Text.AlignRight
                Layout.preferredWidth: 90
                color: card.theme.secondaryAccent
                font.pixelSize: 15
                font.bold: true
            }
            ThemedButton {
                objectName: "selectAllButton"
                theme: card.theme
                text: card.allSelected ? card.labels.deselectAll : card.labels.selectAll
                Layout.preferredWidth: 116
                onClicked: card.toggleGroup(card.groupId)
            }
            ThemedButton {
                objectName: "cleanGroupButton"
                theme: card.theme
                text: card.labels.cleanGroup
                symbol: "trash.fill"
                enabled: card.hasSelection
                onClicked: card.cleanGroup(card.groupId)
            }
            ToolButton {
                objectName: "expandButton"
                Accessible.name: card.isExpanded ? "Collapse" : "Expand"
                onClicked: card.isExpanded = !card.isExpanded
                contentItem: Icon {
                    name: card.isExpanded ? "chevron.up" : "chevron.down"
                    size: 16
                    color: card.theme.textSecondary
                }
                background: Item {}
            }
        }

        Repeater {
            model: card.isExpanded ? card.items : []
            delegate: JunkItemRow {
                Layout.fillWidth: true
                theme: card.theme
                labels: card.labels
                onToggled: card.toggleItem(card.groupId, itemId)
                onRevealed: card.revealItem(itemId)
            }
        }
    }
}
