import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import "../components"

// The manifest sheet's header: the "DRY RUN" badge, its title and promise, and a close button.
RowLayout {
    id: header

    required property var theme

    // The close button was pressed.
    signal closeRequested()

    spacing: 14

    Rectangle {
        Layout.preferredWidth: 44
        Layout.preferredHeight: 44
        Layout.alignment: Qt.AlignTop
        radius: 12
        color: Qt.rgba(header.theme.accent.r, header.theme.accent.g, header.theme.accent.b, 0.15)
        Icon {
            anchors.centerIn: parent
            name: "doc.text.magnifyingglass"
            color: header.theme.accent
            size: 22
        }
    }
    ColumnLayout {
        spacing: 4
        Layout.fillWidth: true
        Badge {
            text: "DRY RUN"
            tint: header.theme.accent
        }
        Text {
            text: "Smart Clean Pre-Flight Manifest"
            color: header.theme.textPrimary
            font.pixelSize: 20
            font.bold: true
        }
        Text {
            text: "Verify exactly what will be reclaimed. Nothing is deleted without your explicit consent."
            color: header.theme.textSecondary
            font.pixelSize: 12
            wrapMode: Text.WordWrap
            Layout.fillWidth: true
        }
    }
    ToolButton {
        objectName: "closeButton"
        Layout.alignment: Qt.AlignTop
        Accessible.name: "Close"
        onClicked: header.closeRequested()
        contentItem: Icon {
            name: "xmark.circle.fill"
            color: header.theme.textSecondary
            size: 22
        }
        background: Item {}
    }
}
