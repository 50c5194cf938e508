import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import "../components"

// The duplicate finder: scan button and status (with "Cancel", or Escape, while a scan runs),
// then either the empty state or the summary line with the selection buttons and one section
// per duplicate group. Everything it shows comes
// from the scanner and its groups model; every action is one call on the scanner.
Rectangle {
    id: page

    required property var scanner
    required property var theme
    readonly property var labels: scanner.labels()
    readonly property bool busy: scanner.isScanning || scanner.isTrashing

    color: theme.background

    DropArea {
        anchors.fill: parent
        keys: ["text/uri-list"]
        onDropped: drop => {
            if (drop.hasUrls && drop.urls.length > 0) {
                page.scanner.scanFolderUrl(drop.urls[0])
            }
        }
    }

    Shortcut {
        sequence: StandardKey.Refresh
        enabled: page.visible && !page.busy
        onActivated: page.scanner.scan()
    }
    Shortcut {
        sequence: StandardKey.Cancel
        enabled: page.visible && page.scanner.isScanning
        onActivated: page.scanner.cancel()
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 28
        spacing: 18

        RowLayout {
            spacing: 12
            Layout.fillWidth: true

            SectionHeader {
                theme: page.theme
                title: page.labels.title
                subtitle: page.scanner.isTrashing ? page.scanner.trashProgressText
                                                  : page.scanner.statusMessage
                symbol: "doc.on.doc.fill"
                Layout.fillWidth: true
            }
            BusyIndicator {
                visible: page.busy
                running: visible
                Layout.preferredWidth: 28
                Layout.preferredHeight: 28
            }
            ThemedButton {
                objectName: "cancelScanButton"
                visible: page.scanner.isScanning
                theme: page.theme
                text: page.labels.cancel
                symbol: "xmark.circle.fill"
                onClicked: page.scanner.cancel()
            }
            ThemedButton {
                objectName: "scanFolderButton"
                theme: page.theme
                text: page.labels.scanFolderButton
                symbol: "folder.fill"
                enabled: !page.busy
                onClicked: dialogs.chooseFolder()
            }
            ThemedButton {
                objectName: "scanButton"
                theme: page.theme
                text: page.labels.scanButton
                symbol: "arrow.clockwise"
                prominent: true
                enabled: !page.busy
                onClicked: page.scanner.scan()
            }
        }

        // Empty state: no groups and no scan running.
        Card {
            objectName: "emptyState"
            theme: page.theme
            visible: page.scanner.groupCount === 0 && !page.scanner.isScanning
            Layout.fillWidth: true
            Layout.fillHeight: true

            ColumnLayout {
                anchors.centerIn: parent
                width: Math.min(parent.width - 60, 520)
                spacing: 14

                Icon {
                    name: "doc.on.doc.fill"
                    color: page.theme.accent
                    size: 54
                    Layout.alignment: Qt.AlignHCenter
                }
                Text {
                    text: page.labels.emptyTitle
                    color: page.theme.textPrimary
                    font.pixelSize: 20
                    font.bold: true
                    Layout.alignment: Qt.AlignHCenter
                }
                Text {
                    text: page.labels.emptyText
                    color: page.theme.textSecondary
                    font.pixelSize: 13
                    wrapMode: Text.WordWrap
                    horizontalAlignment: Text.AlignHCenter
                    Layout.fillWidth: true
                }
                ThemedButton {
                    objectName: "emptyScanButton"
                    theme: page.theme
                    text: page.labels.emptyButton
                    prominent: true
                    enabled: !page.busy
                    Layout.alignment: Qt.AlignHCenter
                    onClicked: page.scanner.scan()
                }
            }
        }

        // Scanning with nothing to show yet.
        Item {
            visible: page.scanner.groupCount === 0 && page.scanner.isScanning
            Layout.fillWidth: true
            Layout.fillHeight: true
        }

        // Summary line.
        Card {
            objectName: "summaryBar"
            theme: page.theme
            visible: page.scanner.groupCount > 0
            Layout.fillWidth: true
            Layout.preferredHeight: 64

            RowLayout {
                anchors.fill: parent
                anchors.leftMargin: 20
                anchors.rightMargin: 14
                spacing: 10

                ColumnLayout {
                    spacing: 2

                    Text {
                        objectName: "setsText"
                        text: page.scanner.groupCount + page.labels.setsSuffix
                        color: page.theme.textPrimary
                        font.pixelSize: 16
                        font.bold: true
                    }
                    Text {
                        objectName: "wastedText"
                        text: page.labels.wastedPrefix + page.scanner.totalWastedText
                        color: page.theme.textSecondary
                        font.pixelSize: 12
                    }
                }
                Item {
                    Layout.fillWidth: true
                }
                ThemedButton {
                    objectName: "keepNewestButton"
                    theme: page.theme
                    text: page.labels.keepNewest
                    enabled: !page.busy
                    onClicked: page.scanner.keepNewest()
                }
                ThemedButton {
                    objectName: "keepOldestButton"
                    theme: page.theme
                    text: page.labels.keepOldest
                    enabled: !page.busy
                    onClicked: page.scanner.keepOldest()
                }
                ThemedButton {
                    objectName: "trashButton"
                    theme: page.theme
                    text: page.labels.trashButton.arg(page.scanner.selectedCount)
                    symbol: "trash.fill"
                    destructive: true
                    enabled: !page.busy && page.scanner.selectedCount > 0
                    onClicked: dialogs.confirmTrash()
                }
            }
        }

        ListView {
            id: groupList
            objectName: "groupList"
            visible: page.scanner.groupCount > 0
            model: page.scanner.groups
            spacing: 14
            clip: true
            reuseItems: true
            boundsBehavior: Flickable.StopAtBounds
            Layout.fillWidth: true
            Layout.fillHeight: true
            ScrollBar.vertical: ScrollBar {}

            delegate: DuplicateGroupSection {
                required property string heading
                required property string copiesText
                required property var files
                width: groupList.width
                theme: page.theme
                labels: page.labels
                enabled: !page.busy
                headingText: heading + " · " + copiesText
                fileRows: files
                onToggleFile: fileId => page.scanner.toggleFile(fileId)
                onRevealFile: fileId => page.scanner.revealFile(fileId)
            }
        }
    }

    DuplicateDialogs {
        id: dialogs
        anchors.fill: parent
        scanner: page.scanner
        theme: page.theme
        labels: page.labels
    }
}
