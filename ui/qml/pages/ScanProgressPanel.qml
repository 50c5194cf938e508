import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import "../components"

// Shown while no tree exists: the scanner's progress (or its last status when idle), with a
// "Stop" button that ends the running scan; the partial tree then replaces this panel.
Card {
    id: panel

    required property var scanner

    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(parent.width - 60, 560)
        spacing: 14

        BusyIndicator {
            running: panel.scanner.isScanning
            visible: running
            Layout.alignment: Qt.AlignHCenter
        }
        Icon {
            visible: !panel.scanner.isScanning
            name: "internaldrive"
            color: panel.theme.accent
            size: 40
            Layout.alignment: Qt.AlignHCenter
        }
        Text {
            text: panel.scanner.progressText.length > 0 ? panel.scanner.progressText
                                                        : "Choose a folder to scan."
            color: panel.theme.textPrimary
            font.pixelSize: 16
            font.bold: true
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
            Layout.fillWidth: true
        }
        Text {
            visible: panel.scanner.isScanning
            text: panel.scanner.currentPath
            color: panel.theme.textSecondary
            font.pixelSize: 12
            elide: Text.ElideMiddle
            horizontalAlignment: Text.AlignHCenter
            Layout.fillWidth: true
        }
        ThemedButton {
            objectName: "stopScanButton"
            visible: panel.scanner.isScanning
            theme: panel.theme
            text: "Stop"
            symbol: "xmark.circle.fill"
            Layout.alignment: Qt.AlignHCenter
            onClicked: panel.scanner.cancel()
        }
    }
}
