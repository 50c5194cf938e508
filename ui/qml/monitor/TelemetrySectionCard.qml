import QtQuick
import QtQuick.Layouts
import "../components"

// A titled card of the telemetry screen: icon, title, an optional note on the right, and content.
Rectangle {
    id: section

    required property var theme
    property string title
    property string iconName
    property string note
    default property alias content: body.data

    implicitHeight: header.implicitHeight + body.implicitHeight + 48
    radius: 14
    color: theme.cardBackground
    border.color: theme.border
    border.width: 1

    RowLayout {
        id: header
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: 16
        spacing: 8
        Icon {
            name: section.iconName
            color: section.theme.accent
            size: 16
        }
        Text {
            Layout.fillWidth: true
            text: section.title
            color: section.theme.textPrimary
            font.pixelSize: 15
            font.weight: Font.DemiBold
        }
        Text {
            visible: section.note.length > 0
            text: section.note
            color: section.theme.textSecondary
            font.pixelSize: 12
        }
    }
    ColumnLayout {
        id: body
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: header.bottom
        anchors.margins: 16
        spacing: 10
    }
}
