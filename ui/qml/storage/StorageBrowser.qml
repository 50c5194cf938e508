import QtQuick
import QtQuick.Controls

// The storage section below the toolbar: breadcrumb and mode switch, the chosen visualiser and
// the details pane. The full view replaces this placeholder body; the public members stay.
Item {
    id: root

    required property var navigator
    required property var diskScanner
    required property var theme

    signal folderDropped(string path)
    signal uninstallRequested(string path)

    Label {
        anchors.centerIn: parent
        text: root.navigator && root.navigator.hasTree ? "" : "No scanned folder"
        color: root.theme ? root.theme.textSecondary : "gray"
    }
}
