import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import "../components"

// The confirmation before cleaning. ask("") cleans every selected item on "Move to Trash";
// ask(groupId) cleans that group's selected items only. "Cancel" changes nothing.
Item {
    id: dialogs

    required property var scanner
    required property var theme
    required property var labels
    property string groupToClean

    function ask(groupId) {
        groupToClean = groupId
        confirm.open()
    }

    Dialog {
        id: confirm
        objectName: "cleanConfirmDialog"
        parent: Overlay.overlay
        anchors.centerIn: parent
        modal: true
        width: 460
        padding: 20
        topPadding: 8
        title: dialogs.labels.confirmTitle

        background: Rectangle {
            radius: 14
            color: Qt.tint(dialogs.theme.background, dialogs.theme.cardBackground)
            border.color: dialogs.theme.border
        }
        header: Text {
            text: confirm.title
            color: dialogs.theme.textPrimary
            font.pixelSize: 17
            font.bold: true
            padding: 20
            bottomPadding: 4
        }
        Text {
            width: parent.width
            text: dialogs.labels.confirmText
            color: dialogs.theme.textSecondary
            font.pixelSize: 13
            wrapMode: Text.WordWrap
        }
        footer: RowLayout {
            spacing: 10
            Item {
                Layout.fillWidth: true
            }
            ThemedButton {
                objectName: "cancelCleanButton"
                theme: dialogs.theme
                text: dialogs.labels.cancel
                onClicked: confirm.close()
            }
            ThemedButton {
                objectName: "moveToTrashButton"
                theme: dialogs.theme
                text: dialogs.labels.moveToTrash
                prominent: true
                Layout.rightMargin: 20
                Layout.bottomMargin: 16
                onClicked: {
                    confirm.close()
                    if (dialogs.groupToClean.length > 0)
                        dialogs.scanner.cleanGroup(dialogs.groupToClean)
                    else
                        dialogs.scanner.cleanAllSelected()
                }
            }
        }
    }
}
