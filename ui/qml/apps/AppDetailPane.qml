import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import "../components"

// The selected application: icon and name, its files ("Application Binary (.app)" always
// included, then one row per leftover with a toggle and "Reveal"), the total footprint and
// the destructive uninstall button.
Card {
    id: pane

    required property var scanner
    required property var app
    readonly property var labels: scanner.labels
    signal uninstallRequested()

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 18
        spacing: 12

        RowLayout {
            spacing: 12
            Item {
                Layout.preferredWidth: 48
                Layout.preferredHeight: 48
                Image {
                    anchors.fill: parent
                    visible: pane.app.iconPath.length > 0
                    source: visible ? "file://" + pane.app.iconPath : ""
                    sourceSize.width: 96
                    sourceSize.height: 96
                    fillMode: Image.PreserveAspectFit
                }
                Icon {
                    anchors.centerIn: parent
                    visible: pane.app.iconPath.length === 0
                    name: "questionmark.app"
                    size: 40
                    color: pane.theme.textSecondary
                }
            }
            ColumnLayout {
                spacing: 2
                Layout.fillWidth: true
                Text {
                    objectName: "detailName"
                    text: pane.app.name
                    color: pane.theme.textPrimary
                    font.pixelSize: 18
                    font.bold: true
                    elide: Text.ElideRight
                    Layout.fillWidth: true
                }
                Text {
                    text: pane.app.identifier + " · " + pane.app.version
                    color: pane.theme.textSecondary
                    font.pixelSize: 12
                    elide: Text.ElideRight
                    Layout.fillWidth: true
                }
            }
        }

        Text {
            text: pane.labels.filesSection
            color: pane.theme.textSecondary
            font.pixelSize: 12
            font.bold: true
        }

        ListView {
            id: files
            objectName: "filesList"
            clip: true
            spacing: 6
            Layout.fillWidth: true
            Layout.fillHeight: true
            model: pane.app.items
            header: RowLayout {
                width: files.width
                height: 40
                spacing: 10
                Icon { name: "app.fill"; size: 18; color: pane.theme.accent }
                ColumnLayout {
                    spacing: 1
                    Layout.fillWidth: true
                    Text {
                        text: pane.labels.bundleRow
                        color: pane.theme.textPrimary
                        font.pixelSize: 13
                    }
                    Text {
                        text: pane.app.displayLocation
                        color: pane.theme.textSecondary
                        font.pixelSize: 11
                        elide: Text.ElideMiddle
                        Layout.fillWidth: true
                    }
                }
                Text { text: pane.app.bundleText; color: pane.theme.textPrimary; font.pixelSize: 12 }
            }
            delegate: RowLayout {
                id: itemRow
                required property var modelData
                width: files.width
                height: 44
                spacing: 10
                Icon { name: itemRow.modelData.typeIcon; size: 18; color: pane.theme.secondaryAccent }
                ColumnLayout {
                    spacing: 1
                    Layout.fillWidth: true
                    Text {
                        text: itemRow.modelData.typeName
                        color: pane.theme.textPrimary
                        font.pixelSize: 13
                    }
                    Text {
                        text: itemRow.modelData.displayPath
                        color: pane.theme.textSecondary
                        font.pixelSize: 11
                        elide: Text.ElideMiddle
                        Layout.fillWidth: true
                    }
                }
                Text { text: itemRow.modelData.sizeText; color: pane.theme.textPrimary; font.pixelSize: 12 }
                ToolButton {
                    id: revealButton
                    text: pane.labels.reveal
                    onClicked: pane.scanner.reveal(itemRow.modelData.path)
                    contentItem: Text {
                        text: revealButton.text
                        color: pane.theme.accent
                        font.pixelSize: 11
                    }
                }
                ThemedSwitch {
                    objectName: "itemToggle"
                    theme: pane.theme
                    checked: itemRow.modelData.isSelected
                    onToggled: pane.scanner.setItemSelected(pane.app.appId, itemRow.modelData.itemId,
                                                            checked)
                }
            }
        }

        RowLayout {
            Layout.fillWidth: true
            Text {
                text: pane.labels.footprint
                color: pane.theme.textSecondary
                font.pixelSize: 13
                Layout.fillWidth: true
            }
            Text {
                text: pane.app.totalText
                color: pane.theme.textPrimary
                font.pixelSize: 15
                font.bold: true
            }
        }

        ThemedButton {
            objectName: "uninstallButton"
            theme: pane.theme
            text: pane.app.uninstallText
            symbol: "trash.fill"
            prominent: true
            enabled: !pane.scanner.isRemoving
            Layout.fillWidth: true
            onClicked: pane.uninstallRequested()
        }
    }
}
