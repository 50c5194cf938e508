import QtQuick
import QtQuick.Layouts

// Details of the viewed folder: name, size and item count, "Breakdown by Category" and
// "Contents (N)" sorted by size.
Item {
    id: folder

    required property var navigator
    required property var theme
    readonly property var details: navigator.details

    Column {
        id: header
        anchors.left: parent.left
        anchors.right: parent.right
        spacing: 8

        Row {
            spacing: 8
            StorageSymbol {
                anchors.verticalCenter: parent.verticalCenter
                name: "internaldrive"
                size: 22
                tint: folder.theme.accent
            }
            Text {
                anchors.verticalCenter: parent.verticalCenter
                width: header.width - 40
                text: folder.details.folderName
                elide: Text.ElideMiddle
                color: folder.theme.textPrimary
                font.pixelSize: 16
                font.bold: true
            }
        }
        Text {
            width: header.width
            elide: Text.ElideRight
            text: folder.details.folderSizeText + "  \u2022  " + folder.details.folderItemsText
            color: folder.theme.textSecondary
            font.pixelSize: 12
        }
        Text {
            topPadding: 6
            text: "Breakdown by Category"
            color: folder.theme.textPrimary
            font.pixelSize: 13
            font.bold: true
        }
        Repeater {
            model: folder.details.breakdown

            // Name on the left (elided when the pane is narrow), figures on the right.
            RowLayout {
                required property var modelData
                width: header.width
                spacing: 8
                Rectangle {
                    implicitWidth: 10
                    implicitHeight: 10
                    radius: 3
                    color: modelData.color
                }
                Text {
                    text: modelData.name
                    color: folder.theme.textPrimary
                    font.pixelSize: 12
                    elide: Text.ElideRight
                    Layout.fillWidth: true
                    Layout.minimumWidth: 40
                }
                Text {
                    text: modelData.sizeText + " \u2022 " + modelData.shareText
                    color: folder.theme.textSecondary
                    font.pixelSize: 12
                }
            }
        }
        Row {
            topPadding: 6
            spacing: 8
            Text {
                text: "Contents (" + folder.navigator.contents.count + ")"
                color: folder.theme.textPrimary
                font.pixelSize: 13
                font.bold: true
            }
            Text {
                anchors.bottom: parent.bottom
                text: "Sorted by size"
                color: folder.theme.textSecondary
                font.pixelSize: 11
            }
        }
    }

    ListView {
        objectName: "contentsList"
        anchors.top: header.bottom
        anchors.topMargin: 6
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        clip: true
        spacing: 2
        model: folder.navigator.contents
        delegate: ItemRowView {
            width: ListView.view.width
            contents: folder.navigator.contents
            theme: folder.theme
        }
    }
}
