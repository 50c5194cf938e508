import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import "../components"

// One duplicate group: its heading ("Each file: 5 MB · 3 copies") and one row per copy with
// its selection toggle, thumbnail or icon, name, path, date and "Show in Files" (this
// platform's words for revealing a file, from the scanner's labels).
Card {
    id: section

    property var labels
    property string headingText
    property var fileRows: []

    signal toggleFile(string fileId)
    signal revealFile(string fileId)

    implicitHeight: column.implicitHeight + 28

    ColumnLayout {
        id: column
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: 14
        spacing: 6

        Text {
            objectName: "groupHeading"
            text: section.headingText
            color: section.theme.textPrimary
            font.pixelSize: 14
            font.bold: true
            Layout.leftMargin: 4
            Layout.bottomMargin: 2
        }

        Repeater {
            model: section.fileRows

            delegate: RowLayout {
                id: row
                required property var modelData
                spacing: 12
                Layout.fillWidth: true

                CheckBox {
                    id: toggle
                    objectName: "fileToggle"
                    checked: row.modelData.isSelected
                    Accessible.name: row.modelData.name
                    ToolTip.visible: hovered
                    ToolTip.text: row.modelData.isSelected ? "Will be moved to the Trash" : "Kept"
                    onToggled: section.toggleFile(row.modelData.fileId)

                    // Drawn in the theme rather than the style's light box.
                    indicator: Rectangle {
                        implicitWidth: 18
                        implicitHeight: 18
                        x: toggle.leftPadding
                        y: (toggle.height - height) / 2
                        radius: 5
                        color: toggle.checked ? section.theme.accent : "transparent"
                        border.width: toggle.visualFocus ? 2 : 1.5
                        border.color: toggle.visualFocus ? section.theme.textPrimary
                                                         : (toggle.checked
                                                            ? section.theme.accent
                                                            : section.theme.textSecondary)

                        Icon {
                            anchors.centerIn: parent
                            visible: toggle.checked
                            name: "checkmark"
                            color: "white"
                            size: 12
                        }
                    }
                }
                Item {
                    Layout.preferredWidth: 36
                    Layout.preferredHeight: 36

                    Icon {
                        anchors.centerIn: parent
                        visible: thumbnail.status !== Image.Ready
                        name: "doc.fill"
                        color: section.theme.secondaryAccent
                        size: 22
                    }
                    Image {
                        id: thumbnail
                        anchors.fill: parent
                        visible: status === Image.Ready
                        source: row.modelData.thumbnailUrl
                        sourceSize.width: 72
                        sourceSize.height: 72
                        fillMode: Image.PreserveAspectCrop
                        asynchronous: true
                        cache: false
                    }
                }
                ColumnLayout {
                    spacing: 1
                    Layout.fillWidth: true

                    Text {
                        text: row.modelData.name
                        color: row.modelData.isSelected ? section.theme.textSecondary
                                                         : section.theme.textPrimary
                        font.pixelSize: 13
                        font.bold: !row.modelData.isSelected
                        elide: Text.ElideMiddle
                        Layout.fillWidth: true
                    }
                    Text {
                        text: row.modelData.path
                        color: section.theme.textSecondary
                        font.pixelSize: 11
                        elide: Text.ElideMiddle
                        Layout.fillWidth: true
                    }
                }
                Text {
                    text: row.modelData.dateText
                    color: section.theme.textSecondary
                    font.pixelSize: 12
                }
                ThemedButton {
                    objectName: "revealButton"
                    theme: section.theme
                    text: section.labels.reveal
                    symbol: "folder"
                    implicitHeight: 28
                    onClicked: section.revealFile(row.modelData.fileId)
                }
            }
        }
    }
}
