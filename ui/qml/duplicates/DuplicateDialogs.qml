import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import "../components"

// The duplicate finder's dialogs: the folder panel of "Scan Folder...", the confirmation before
// trashing and the result afterwards. Cancelling any of them changes nothing.
Item {
    id: dialogs

    required property var scanner
    required property var theme
    required property var labels

    function chooseFolder() {
        folderPanel.open()
    }
    function confirmTrash() {
        confirm.open()
    }

    Connections {
        target: dialogs.scanner
        function onTrashFinished(message) {
            result.message = message
            result.open()
        }
    }

    FolderDialog {
        id: folderPanel
        title: dialogs.labels.scanFolderButton
        onAccepted: dialogs.scanner.scanFolderUrl(selectedFolder)
    }

    component AlertDialog: Dialog {
        id: alert
        property string message
        parent: Overlay.overlay
        anchors.centerIn: parent
        modal: true
        focus: true
        width: 440
        padding: 20
        topPadding: 8

        background: Rectangle {
            radius: 14
            color: Qt.tint(dialogs.theme.background, dialogs.theme.cardBackground)
            border.color: dialogs.theme.border
        }
        header: Text {
            text: alert.title
            color: dialogs.theme.textPrimary
            font.pixelSize: 17
            font.bold: true
            padding: 20
            bottomPadding: 4
        }
        Text {
            width: parent.width
            text: alert.message
            color: dialogs.theme.textSecondary
            font.pixelSize: 13
            wrapMode: Text.WordWrap
        }
    }

    AlertDialog {
        id: confirm
        objectName: "trashConfirmDialog"
        title: dialogs.labels.confirmTitle
        message: dialogs.labels.confirmText

        footer: RowLayout {
            spacing: 10
            Item {
                Layout.fillWidth: true
            }
            // Cancel holds the focus when the dialog opens: Enter (or Escape) changes nothing.
            ThemedButton {
                objectName: "cancelTrashButton"
                theme: dialogs.theme
                text: dialogs.labels.cancel
                focus: true
                Layout.bottomMargin: 16
                Keys.onReturnPressed: clicked()
                Keys.onEnterPressed: clicked()
                onClicked: confirm.close()
            }
            ThemedButton {
                objectName: "moveToTrashButton"
                theme: dialogs.theme
                text: dialogs.labels.moveToTrash
                destructive: true
                Layout.rightMargin: 20
                Layout.bottomMargin: 16
                Keys.onReturnPressed: clicked()
                Keys.onEnterPressed: clicked()
                onClicked: {
                    confirm.close()
                    dialogs.scanner.trashSelected()
                }
            }
        }
    }

    AlertDialog {
        id: result
        objectName: "trashResultDialog"
        title: dialogs.labels.resultTitle

        footer: RowLayout {
            Item {
                Layout.fillWidth: true
            }
            ThemedButton {
                theme: dialogs.theme
                text: dialogs.labels.ok
                focus: true
                Layout.rightMargin: 20
                Layout.bottomMargin: 16
                onClicked: result.close()
            }
        }
    }
}
