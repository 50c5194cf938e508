import QtQuick

// The details pane beside the visualiser: the viewed folder (size, items, breakdown by
// category, contents by size) or, with a selection, the selected item.
Rectangle {
    id: pane

    required property var navigator
    required property var theme

    signal uninstallRequested(string path)

    radius: 14
    color: theme.cardBackground
    border.color: theme.border

    FolderDetails {
        anchors.fill: parent
        anchors.margins: 14
        visible: !pane.navigator.details.hasSelection
        navigator: pane.navigator
        theme: pane.theme
    }
    SelectionDetails {
        anchors.fill: parent
        anchors.margins: 14
        visible: pane.navigator.details.hasSelection
        details: pane.navigator.details
        theme: pane.theme
        onUninstallRequested: path => pane.uninstallRequested(path)
    }
}
