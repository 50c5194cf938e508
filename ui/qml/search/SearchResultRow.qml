import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import "../components"

// One found file: category icon, name, folder, date and size, with "Show in Files" and
// "Move to Trash". A click selects it (Ctrl adds or removes, Shift extends).
Rectangle {
    id: row

    required property int index
    required property string name
    required property string path
    required property string folder
    required property string sizeText
    required property string dateText
    required property string category
    required property string symbol
    required property color categoryColor
    required property bool selected
    required property var theme
    required property var labels
    property bool current: false
    // False while a search or a trash runs: the row cannot be trashed then.
    property bool canTrash: true

    signal clicked(int modifiers)
    signal revealRequested()
    signal trashRequested()

    height: 56
    radius: 10
    color: selected ? Qt.rgba(theme.accent.r, theme.accent.g, theme.accent.b, 0.18)
                    : (mouse.containsMouse ? theme.cardBackground : "transparent")
    border.color: current ? theme.accent : "transparent"

    MouseArea {
        id: mouse
        anchors.fill: parent
        hoverEnabled: true
        onClicked: event => row.clicked(event.modifiers)
        onDoubleClicked: row.revealRequested()
    }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 12
        anchors.rightMargin: 10
        spacing: 12

        Rectangle {
            Layout.preferredWidth: 34
            Layout.preferredHeight: 34
            radius: 8
            color: Qt.rgba(row.categoryColor.r, row.categoryColor.g, row.categoryColor.b, 0.18)
            Icon {
                anchors.centerIn: parent
                name: row.symbol
                size: 17
                color: row.categoryColor
            }
        }
        ColumnLayout {
            spacing: 2
            Layout.fillWidth: true
            Text {
                text: row.name
                color: row.theme.textPrimary
                font.pixelSize: 14
                font.bold: true
                elide: Text.ElideMiddle
                Layout.fillWidth: true
            }
            Text {
                text: row.folder
                color: row.theme.textSecondary
                font.pixelSize: 11
                elide: Text.ElideMiddle
                Layout.fillWidth: true
            }
        }
        Text {
            text: row.dateText
            color: row.theme.textSecondary
            font.pixelSize: 12
            Layout.preferredWidth: 130
        }
        Text {
            text: row.sizeText
            color: row.theme.textPrimary
            font.pixelSize: 14
            font.bold: true
            horizontalAlignment: Text.AlignRight
            Layout.preferredWidth: 80
        }
        ThemedButton {
            objectName: "revealButton"
            theme: row.theme
            text: row.labels.reveal
            symbol: "folder"
            focusPolicy: Qt.NoFocus
            onClicked: row.revealRequested()
        }
        ThemedButton {
            objectName: "searchTrashButton"
            theme: row.theme
            text: row.labels.moveToTrash
            symbol: "trash"
            focusPolicy: Qt.NoFocus
            enabled: row.canTrash
            onClicked: row.trashRequested()
        }
    }
}
