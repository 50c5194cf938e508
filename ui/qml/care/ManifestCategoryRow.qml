import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import "../components"

// One row of the manifest: a category's icon, title, badge, rationale, size and switch, and
// (expanded) the exact items a clean with this row switched on removes.
Card {
    id: card

    // A map of the engine's manifestRows: category, title, rationale, icon, badge,
    // needsReview, formattedSize, itemCount, items.
    required property var row
    // The row's switch as the engine holds it.
    property bool checked: true
    property color good: "#34c759"
    property color warning: "#ff9f0a"
    property bool expanded: false

    // The switch was flipped by the user.
    signal toggled(bool on)

    implicitHeight: column.implicitHeight + 28
    opacity: checked ? 1.0 : 0.6

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: 14
        spacing: 8

        RowLayout {
            spacing: 12
            Layout.fillWidth: true

            Icon {
                name: card.row.icon
                color: card.theme.accent
                size: 20
                Layout.alignment: Qt.AlignTop
            }
            ColumnLayout {
                spacing: 4
                Layout.fillWidth: true
                RowLayout {
                    spacing: 8
                    Text {
                        objectName: "rowTitle"
                        text: card.row.title
                        color: card.theme.textPrimary
                        font.pixelSize: 14
                        font.bold: true
                    }
                    Badge {
                        objectName: "rowBadge"
                        text: card.row.badge
                        tint: card.row.needsReview ? card.warning : card.good
                    }
                }
                Text {
                    text: card.row.rationale
                    color: card.theme.textSecondary
                    font.pixelSize: 12
                    wrapMode: Text.WordWrap
                    Layout.fillWidth: true
                }
            }
            Text {
                objectName: "rowSize"
                text: card.row.formattedSize
                color: card.theme.textPrimary
                font.pixelSize: 14
                font.bold: true
            }
            ThemedSwitch {
                id: toggle
                objectName: "rowSwitch"
                theme: card.theme
                checked: card.checked
                onToggled: card.toggled(checked)
                Accessible.name: card.row.title
            }
        }

        Label {
            objectName: "itemsToggle"
            visible: card.row.itemCount > 0
            text: (card.expanded ? "Hide " : "Show ") + card.row.itemCount
                  + (card.row.itemCount === 1 ? " item" : " items")
            color: card.theme.accent
            font.pixelSize: 12
            Layout.leftMargin: 32

            MouseArea {
                anchors.fill: parent
                cursorShape: Qt.PointingHandCursor
                onClicked: card.expanded = !card.expanded
            }
        }

        ListView {
            objectName: "itemList"
            visible: card.expanded && count > 0
            model: card.expanded ? card.row.items : []
            clip: true
            interactive: contentHeight > height
            boundsBehavior: Flickable.StopAtBounds
            Layout.fillWidth: true
            Layout.leftMargin: 32
            Layout.preferredHeight: Math.min(contentHeight, 220)

            delegate: RowLayout {
                required property var modelData
                width: ListView.view.width
                height: 22
                spacing: 8

                Text {
                    text: modelData.path
                    color: card.theme.textSecondary
                    font.pixelSize: 11
                    elide: Text.ElideMiddle
                    Layout.fillWidth: true
                }
                Text {
                    visible: modelData.needsAdmin
                    text: "needs password"
                    color: card.warning
                    font.pixelSize: 10
                }
                Text {
                    text: modelData.formattedSize
                    color: card.theme.textPrimary
                    font.pixelSize: 11
                }
            }
        }
    }
}
