import QtQuick
import QtQuick.Layouts
import "../components"

// One installed application in the list: its icon (or a question-mark symbol), name, total size
// and, when it has leftovers, their size followed by " junk". Highlighted while selected; a
// click selects it.
Rectangle {
    id: row

    required property var theme
    required property var app
    property bool isSelected: false
    signal clicked()

    implicitHeight: 54
    radius: 9
    color: isSelected ? Qt.rgba(theme.accent.r, theme.accent.g, theme.accent.b, 0.18)
                      : (mouse.containsMouse ? Qt.rgba(1, 1, 1, 0.04) : "transparent")
    border.color: isSelected ? theme.accent : "transparent"

    MouseArea {
        id: mouse
        anchors.fill: parent
        hoverEnabled: true
        onClicked: row.clicked()
    }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 10
        anchors.rightMargin: 10
        spacing: 10

        Item {
            Layout.preferredWidth: 32
            Layout.preferredHeight: 32
            Image {
                anchors.fill: parent
                visible: row.app.iconPath.length > 0
                source: visible ? "file://" + row.app.iconPath : ""
                sourceSize.width: 64
                sourceSize.height: 64
                fillMode: Image.PreserveAspectFit
                asynchronous: true
            }
            Icon {
                anchors.centerIn: parent
                visible: row.app.iconPath.length === 0
                name: "questionmark.app"
                size: 26
                color: row.theme.textSecondary
            }
        }
        ColumnLayout {
            spacing: 2
            Layout.fillWidth: true
            Text {
                text: row.app.name
                color: row.theme.textPrimary
                font.pixelSize: 13
                font.bold: true
                elide: Text.ElideRight
                Layout.fillWidth: true
            }
            Text {
                text: row.app.kind + " · " + row.app.version
                color: row.theme.textSecondary
                font.pixelSize: 11
                elide: Text.ElideRight
                Layout.fillWidth: true
            }
        }
        ColumnLayout {
            spacing: 2
            Text {
                text: row.app.totalText
                color: row.theme.textPrimary
                font.pixelSize: 12
                Layout.alignment: Qt.AlignRight
            }
            Text {
                visible: row.app.hasLeftovers
                text: row.app.leftoverText
                color: row.theme.secondaryAccent
                font.pixelSize: 11
                Layout.alignment: Qt.AlignRight
            }
        }
    }
}
