import QtQuick
import QtQuick.Layouts
import Sondrel
import "../components"
import "../storage"

// The "Storage Scopix" section: the scan-target toolbar, then the storage browser when a tree
// exists, the access-refused panel when the target could not be read, or the scan's progress.
// A folder dropped anywhere on the page becomes the target and is scanned.
Rectangle {
    id: page

    required property var appRoot
    required property var theme
    readonly property var scanner: appRoot.diskScanner
    readonly property var navigator: appRoot.navigator

    color: theme.background

    DropArea {
        anchors.fill: parent
        keys: ["text/uri-list"]
        onDropped: function (drop) {
            if (drop.hasUrls && page.appRoot.scanChosenFolder(drop.urls[0]))
                drop.acceptProposedAction()
        }
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 20
        spacing: 14

        ScanTargetToolbar {
            appRoot: page.appRoot
            theme: page.theme
            Layout.fillWidth: true
            onChooseFolderRequested: dialogs.chooseCustomFolder()
        }

        StorageBrowser {
            objectName: "storageBrowser"
            visible: page.navigator.hasTree && !page.scanner.accessDenied
            navigator: page.navigator
            diskScanner: page.scanner
            theme: page.theme
            Layout.fillWidth: true
            Layout.fillHeight: true
            onFolderDropped: function (path) { page.appRoot.scanChosenPath(path) }
            onUninstallRequested: path => page.appRoot.uninstallAppAt(path)
        }

        AccessRefusedPanel {
            objectName: "accessRefusedPanel"
            visible: page.scanner.accessDenied
            theme: page.theme
            details: page.navigator.details
            Layout.fillWidth: true
            Layout.fillHeight: true
            onChooseAnotherFolder: dialogs.chooseCustomFolder()
            onScanHome: page.appRoot.scanHomeFolder()
        }

        ScanProgressPanel {
            objectName: "scanProgressPanel"
            visible: !page.navigator.hasTree && !page.scanner.accessDenied
            scanner: page.scanner
            theme: page.theme
            Layout.fillWidth: true
            Layout.fillHeight: true
        }
    }

    ScanTargetDialogs {
        id: dialogs
        objectName: "scanTargetDialogs"
        appRoot: page.appRoot
        theme: page.theme
    }
}
