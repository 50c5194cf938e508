import QtQuick
import QtQuick.Layouts

// A page header: icon, title and subtitle.
RowLayout {
    id: header

    required property var theme
    property string title
    property string subtitle
    property string symbol

    spacing: 14

    Rectangle {
        visible: header.symbol.length > 0
        Layout.preferredWidth: 44
        Layout.preferredHeight: 44
        radius: 12
        color: Qt.rgba(header.theme.accent.r, header.theme.accent.g, header.theme.accent.b, 0.15)

        Icon {
            anchors.centerIn: parent
            name: header.symbol
            color: header.theme.accent
            size: 22
        }
    }

    ColumnLayout {
        spacing: 2
        Layout.fillWidth: true

        Text {
            text: header.title
            color: header.theme.textPrimary
            font.pixelSize: 24
            font.bold: true
            Layout.fillWidth: true
            elide: Text.ElideRight
        }
        Text {
            visible: header.subtitle.length > 0
            text: header.subtitle
            color: header.theme.textSecondary
            font.pixelSize: 13
            Layout.fillWidth: true
            wrapMode: Text.WordWrap
        }
    }
}
