import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import "../components"

// One item of an expanded junk group: selection box, folder icon, title, detail with when it was
// last used, the "Admin" badge of a locked item, its size and the reveal button.
Rectangle {
    id: row

    required property var theme
    required property var labels
    required property var modelData
    readonly property string itemId: modelData.itemId

    signal toggled
    signal revealed

    implicitHeight: 48
    radius: 8
    color: Qt.rgba(1, 1, 1, 0.02)

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 8
        anchors.rightMargin: 8
        spacing: 10

        ToolButton {
            objectName: "itemSelectBox"
            Accessible.name: row.modelData.title
            onClicked: row.toggled()
            contentItem: Icon {
                name: row.modelData.isSelected ? "checkmark.square.fill" : "square"
                size: 18
                color: row.modelData.isSelected ? row.theme.accent : row.theme.textSecondary
            }
            background: Item {}
        }
        Icon {
            name: "folder"
            size: 16
            color: row.theme.textSecondary
        }
        ColumnLayout {
            spacing: 1
            Layout.fillWidth: true

            Text {
                text: row.modelData.title
                color: row.theme.textPrimary
                font.pixelSize: 13
                elide: Text.ElideMiddle
                Layout.fillWidth: true
            }
            Text {
                text: row.modelData.lastUsedText.length > 0
                      ? row.modelData.detail + " · " + row.modelData.lastUsedText
                      : row.modelData.detail
                color: row.theme.textSecondary
                font.pixelSize: 11
                elide: Text.ElideRight
                Layout.fillWidth: true
            }
        }
        Rectangle {
            objectName: "adminBadge"
            visible: row.modelData.isLocked
            implicitWidth: badge.implicitWidth + 14
            implicitHeight: 20
            radius: 10
            color: Qt.rgba(row.theme.secondaryAccent.r, row.theme.secondaryAccent.g,
                           row.theme.secondaryAccent.b, 0.18)
            Row {
                id: badge
                anchors.centerIn: parent
                spacing: 4
                Icon {
                    anchors.verticalCenter: parent.verticalCenter
                    name: "lock.shield.fill"
                    size: 11
                    color: row.theme.secondaryAccent
                }
                Text {
                    text: row.labels.admin
                    color: row.theme.secondaryAccent
                    font.pixelSize: 11
                    font.bold: true
                }
            }
        }
        Text {
            text: row.modelData.sizeText
            color: row.theme.textPrimary
            font.pixelSize: 13
            font.bold: true
        }
        ToolButton {
            objectName: "revealButton"
            Accessible.name: row.labels.reveal
            ToolTip.visible: hovered
            ToolTip.text: row.labels.reveal
            onClicked: row.revealed()
            contentItem: Icon {
                name: "arrow.up.right.square"
                size: 16
                color: row.theme.accent
            }
            background: Item {}
        }
    }
}
