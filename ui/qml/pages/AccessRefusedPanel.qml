import QtQuick
import QtQuick.Layouts
import "../components"

// Shown when the scan target could not be read: why, and two ways on.
Card {
    id: panel

    /// The storage details, for this platform's wording.
    required property var details

    signal chooseAnotherFolder()
    signal scanHome()

    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(parent.width - 60, 520)
        spacing: 14

        Icon {
            name: "hand.raised.fill"
            color: panel.theme.accent
            size: 48
            Layout.alignment: Qt.AlignHCenter
        }
        Text {
            text: "Folder Access Not Granted"
            color: panel.theme.textPrimary
            font.pixelSize: 20
            font.bold: true
            Layout.alignment: Qt.AlignHCenter
        }
        Text {
            text: "Sondrel respects your privacy. "
                  + panel.details.platformText("You selected 'Don't Allow' for this directory, so its files were not pulled into the app.")
            color: panel.theme.textSecondary
            font.pixelSize: 13
            wrapMode: Text.WordWrap
            horizontalAlignment: Text.AlignHCenter
            Layout.fillWidth: true
        }
        RowLayout {
            spacing: 10
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 6

            ThemedButton {
                objectName: "chooseAnotherFolderButton"
                theme: panel.theme
                text: "Choose Another Folder..."
                symbol: "folder.fill"
                onClicked: panel.chooseAnotherFolder()
            }
            ThemedButton {
                objectName: "scanHomeButton"
                theme: panel.theme
                text: "Scan Home Directory (~/)"
                symbol: "house.fill"
                prominent: true
                onClicked: panel.scanHome()
            }
        }
    }
}
