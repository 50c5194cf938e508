import QtQuick
import QtQuick.Controls

// The storage section below the toolbar: the breadcrumb and the visualiser switch, then the
// chosen visualiser beside the details pane. While no tree is present it shows the scanner's
// progress. Keys: Enter zooms into the selection, Backspace goes up, arrows move the selection,
// Escape clears it. A line at the foot of the visualiser reports the last move to the Trash.
Item {
    id: root

    required property var navigator
    required property var diskScanner
    required property var theme

    signal folderDropped(string path)
    signal uninstallRequested(string path)

    focus: true
    Keys.onReturnPressed: root.navigator.zoomIntoSelection()
    Keys.onEnterPressed: root.navigator.zoomIntoSelection()
    Keys.onEscapePressed: root.navigator.clearSelection()
    Keys.onPressed: event => {
        if (event.key === Qt.Key_Backspace) {
            root.navigator.goUp()
            event.accepted = true
        } else if (event.key === Qt.Key_Right || event.key === Qt.Key_Down) {
            root.navigator.selectAdjacent(1)
            event.accepted = true
        } else if (event.key === Qt.Key_Left || event.key === Qt.Key_Up) {
            root.navigator.selectAdjacent(-1)
            event.accepted = true
        }
    }

    Item {
        id: header
        anchors.top: parent.top
        anchors.left: parent.left
        anchors.right: parent.right
        height: Math.max(crumbs.implicitHeight, modeSwitch.implicitHeight)
        visible: root.navigator.hasTree

        BreadcrumbView {
            id: crumbs
            anchors.left: parent.left
            anchors.right: measureSwitch.left
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            clip: true
            details: root.navigator.details
            theme: root.theme
        }
        SizeMeasureSwitch {
            id: measureSwitch
            anchors.right: modeSwitch.left
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            navigator: root.navigator
            theme: root.theme
        }
        VisualizerModeSwitch {
            id: modeSwitch
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            navigator: root.navigator
            theme: root.theme
        }
    }

    Loader {
        id: visualizer
        objectName: "visualizer"
        anchors.top: header.bottom
        anchors.topMargin: 12
        anchors.left: parent.left
        anchors.right: details.left
        anchors.rightMargin: 14
        anchors.bottom: parent.bottom
        visible: root.navigator.hasTree
        sourceComponent: root.navigator.visualizerMode === 1 ? treemapPane : ringsPane
    }

    TrashNotice {
        objectName: "trashNotice"
        anchors.left: visualizer.left
        anchors.right: visualizer.right
        anchors.bottom: visualizer.bottom
        anchors.margins: 10
        navigator: root.navigator
        theme: root.theme
    }

    TreemapDetailsView {
        id: details
        objectName: "detailsPane"
        anchors.top: header.bottom
        anchors.topMargin: 12
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        width: Math.min(340, root.width * 0.34)
        visible: root.navigator.hasTree
        navigator: root.navigator
        theme: root.theme
        onUninstallRequested: path => root.uninstallRequested(path)
    }

    Column {
        anchors.centerIn: parent
        spacing: 10
        visible: !root.navigator.hasTree

        BusyIndicator {
            anchors.horizontalCenter: parent.horizontalCenter
            running: root.diskScanner && root.diskScanner.isScanning
            visible: running
        }
        Text {
            anchors.horizontalCenter: parent.horizontalCenter
            text: root.diskScanner && root.diskScanner.progressText ? root.diskScanner.progressText
                                                                     : "No scanned folder"
            color: root.theme.textSecondary
            font.pixelSize: 14
        }
    }

    Component {
        id: treemapPane
        TreemapPane {
            navigator: root.navigator
            theme: root.theme
            onFolderDropped: path => root.folderDropped(path)
            onUninstallRequested: path => root.uninstallRequested(path)
        }
    }
    Component {
        id: ringsPane
        ColorRingsPane {
            navigator: root.navigator
            theme: root.theme
            onFolderDropped: path => root.folderDropped(path)
            onUninstallRequested: path => root.uninstallRequested(path)
        }
    }
}
