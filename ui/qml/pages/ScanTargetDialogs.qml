import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import Sondrel
import "../components"

// The folder panels and the permission dialog of the scan-target flow. Cancelling any of them
// changes nothing.
Item {
    id: dialogs

    required property var appRoot
    required property var theme
    property string permissionPath
    property string permissionName

    function chooseCustomFolder() {
        customFolder.open()
    }

    Connections {
        target: dialogs.appRoot
        function onPermissionRequired(path, name) {
            dialogs.permissionPath = path
            dialogs.permissionName = name
            permission.open()
        }
    }

    // The panels' path bar is repainted in the theme once the panel is shown.
    function tintPathBar() {
        DialogTint.tintPathBars(dialogs, Qt.tint(dialogs.theme.background,
                                                 dialogs.theme.cardBackground),
                                dialogs.theme.border, dialogs.theme.textSecondary)
    }

    FolderDialog {
        id: customFolder
        objectName: "customFolderDialog"
        onVisibleChanged: if (visible) Qt.callLater(dialogs.tintPathBar)
        title: "Choose a Folder to Scan"
        acceptLabel: "Scopix Storage"
        currentFolder: dialogs.appRoot.fileUrl(dialogs.appRoot.selectedTargetFolder)
        onAccepted: dialogs.appRoot.scanChosenFolder(
                        dialogs.appRoot.folderPanelChoice(selectedFolder, currentFolder))
    }

    FolderDialog {
        id: grantFolder
        onVisibleChanged: if (visible) Qt.callLater(dialogs.tintPathBar)
        title: dialogs.appRoot.grantPanelMessage(dialogs.permissionName)
        acceptLabel: "Grant Access"
        currentFolder: dialogs.appRoot.fileUrl(dialogs.permissionPath)
        onAccepted: dialogs.appRoot.scanChosenFolder(
                        dialogs.appRoot.folderPanelChoice(selectedFolder, currentFolder))
    }

    Dialog {
        id: permission
        objectName: "permissionDialog"
        parent: Overlay.overlay
        anchors.centerIn: parent
        modal: true
        width: 460
        padding: 20
        topPadding: 8
        title: dialogs.appRoot.permissionTitle(dialogs.permissionName)

        background: Rectangle {
            radius: 14
            color: Qt.tint(dialogs.theme.background, dialogs.theme.cardBackground)
            border.color: dialogs.theme.border
        }
        header: Text {
            text: permission.title
            color: dialogs.theme.textPrimary
            font.pixelSize: 17
            font.bold: true
            padding: 20
            bottomPadding: 4
        }

        Text {
            width: parent.width
            text: dialogs.appRoot.permissionMessage(dialogs.permissionName)
            color: dialogs.theme.textSecondary
            font.pixelSize: 13
            wrapMode: Text.WordWrap
        }

        footer: RowLayout {
            spacing: 10
            Item { Layout.fillWidth: true }
            ThemedButton {
                objectName: "permissionCancelButton"
                theme: dialogs.theme
                text: "Cancel"
                Layout.bottomMargin: 18
                onClicked: permission.reject()
            }
            ThemedButton {
                objectName: "grantPermissionButton"
                theme: dialogs.theme
                text: "Grant Permission"
                prominent: true
                Layout.rightMargin: 18
                Layout.bottomMargin: 18
                onClicked: {
                    permission.accept()
                    grantFolder.open()
                }
            }
        }
    }
}
