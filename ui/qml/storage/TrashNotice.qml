import QtQuick
import QtQuick.Layouts
import "../components"

// One line about the last move to the Trash: "Moved NAME to the Trash" with "Undo", or why the
// move or the undo did not happen. A close button dismisses it.
Rectangle {
    id: notice

    required property var navigator
    required property var theme

    visible: navigator.notice.length > 0
    implicitHeight: row.implicitHeight + 16
    radius: 10
    color: theme.cardBackground
    border.color: theme.border

    // The card fill may be translucent: keep the line readable over the canvas beneath.
    Rectangle {
        anchors.fill: parent
        z: -1
        radius: parent.radius
        color: notice.theme.background
    }

    RowLayout {
        id: row
        anchors.fill: parent
        anchors.leftMargin: 14
        anchors.rightMargin: 8
        spacing: 10

        Text {
            objectName: "trashNoticeText"
            text: notice.navigator.notice
            color: notice.theme.textPrimary
            font.pixelSize: 13
            elide: Text.ElideMiddle
            maximumLineCount: 1
            Layout.fillWidth: true
        }
        ThemedButton {
            objectName: "undoTrashButton"
            visible: notice.navigator.canUndoTrash
            theme: notice.theme
            text: "Undo"
            symbol: "arrow.uturn.backward.circle.fill"
            onClicked: notice.navigator.undoTrash()
        }
        ThemedButton {
            objectName: "dismissNoticeButton"
            theme: notice.theme
            text: "Close"
            onClicked: notice.navigator.dismissNotice()
        }
    }
}
