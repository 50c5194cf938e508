import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import "../components"

// Asks before moving the selected files to the Trash: names the file, or gives the count and
// total of several. Cancel (or Escape) changes nothing.
Dialog {
    id: dialog

    required property var search
    required property var theme

    objectName: "trashDialog"
    parent: Overlay.overlay
    anchors.centerIn: parent
    modal: true
    width: 460
    padding: 20
    topPadding: 8
    title: search.labels.moveToTrash
    onAboutToShow: question.text = search.trashQuestion()

    background: Rectangle {
        radius: 14
        color: Qt.tint(dialog.theme.background, dialog.theme.cardBackground)
        border.color: dialog.theme.border
    }
    header: Text {
        text: dialog.title
        color: dialog.theme.textPrimary
        font.pixelSize: 17
        font.bold: true
        padding: 20
        bottomPadding: 4
    }

    Text {
        id: question
        objectName: "trashQuestion"
        width: parent.width
        color: dialog.theme.textSecondary
        font.pixelSize: 13
        wrapMode: Text.WordWrap
    }

    footer: RowLayout {
        spacing: 10
        Item { Layout.fillWidth: true }
        ThemedButton {
            objectName: "trashCancelButton"
            theme: dialog.theme
            text: dialog.search.labels.cancel
            Layout.bottomMargin: 18
            onClicked: dialog.reject()
        }
        ThemedButton {
            objectName: "trashConfirmButton"
            theme: dialog.theme
            text: dialog.search.labels.moveToTrash
            prominent: true
            focus: true
            enabled: dialog.search.canTrash
            Layout.rightMargin: 18
            Layout.bottomMargin: 18
            onClicked: {
                dialog.accept()
                dialog.search.trashSelected()
            }
        }
    }
}
