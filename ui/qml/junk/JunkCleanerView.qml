import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import "../components"

// The junk cleaner: header with "Scan Junk", then either the empty state or the summary bar and
// one card per junk group. Everything it shows comes from the scanner and its groups model;
// every action is one call on the scanner. Cleaning asks first (JunkConfirmDialog).
Rectangle {
    id: page

    required property var scanner
    required property var theme
    readonly property var labels: scanner.labels()
    readonly property bool busy: scanner.isScanning || scanner.isCleaning

    color: theme.background

    Shortcut {
        sequence: StandardKey.Refresh
        enabled: page.visible && !page.busy
        onActivated: page.scanner.scan()
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
                subtitle: page.labels.subtitle
                symbol: "sparkles"
                Layout.fillWidth: true
            }
            BusyIndicator {
                visible: page.busy
                running: visible
                Layout.preferredWidth: 28
                Layout.preferredHeight: 28
            }
            ThemedButton {
                objectName: "scanButton"
                theme: page.theme
                text: page.labels.scanButton
                symbol: page.scanner.isScanning ? "arrow.triangle.2.circlepath" : "arrow.clockwise"
                prominent: true
                enabled: !page.busy
                onClicked: page.scanner.scan()
            }
        }

        Text {
            objectName: "statusText"
            visible: text.length > 0
            text: page.scanner.statusMessage
                  + (page.scanner.lastCleanMessage.length > 0 && !page.busy
                     ? "  ·  " + page.scanner.lastCleanMessage : "")
            color: page.theme.textSecondary
            font.pixelSize: 12
            elide: Text.ElideRight
            Layout.fillWidth: true
        }

        // Empty state: no groups and no scan running.
        Card {
            objectName: "emptyState"
            theme: page.theme
            visible: page.scanner.groupCount === 0 && !page.busy
            Layout.fillWidth: true
            Layout.fillHeight: true

            ColumnLayout {
                anchors.centerIn: parent
                width: Math.min(parent.width - 60, 520)
                spacing: 14

                Icon {
                    name: "sparkles"
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
            visible: page.scanner.groupCount === 0 && page.busy
            Layout.fillWidth: true
            Layout.fillHeight: true
        }

        // Summary bar: the selected total and the main clean button.
        Card {
            objectName: "summaryBar"
            theme: page.theme
            visible: page.scanner.groupCount > 0
            Layout.fillWidth: true
            Layout.preferredHeight: 76

            RowLayout {
                anchors.fill: parent
                anchors.leftMargin: 20
                anchors.rightMargin: 14
                spacing: 10

                ColumnLayout {
                    spacing: 2

                    Text {
                        text: page.labels.reclaimable
                        color: page.theme.textSecondary
                        font.pixelSize: 11
                        font.capitalization: Font.AllUppercase
                    }
                    Text {
                        objectName: "selectedTotalText"
                        text: page.scanner.selectedTotalText
                        color: page.theme.accent
                        font.pixelSize: 22
                        font.bold: true
                    }
                    Text {
                        objectName: "selectedOutOfText"
                        text: page.scanner.selectedOutOfText
                        color: page.theme.textSecondary
                        font.pixelSize: 12
                    }
                }
                Item {
                    Layout.fillWidth: true
                }
                ThemedButton {
                    objectName: "cleanSelectedButton"
                    theme: page.theme
                    text: page.labels.cleanSelected
                    symbol: "trash.fill"
                    prominent: true
                    enabled: !page.busy && page.scanner.hasSelection
                    onClicked: confirm.ask("")
                }
            }
        }

        ListView {
            id: groupList
            objectName: "groupList"
            visible: page.scanner.groupCount > 0
            model: page.scanner.groupModel
            spacing: 14
            clip: true
            boundsBehavior: Flickable.StopAtBounds
            Layout.fillWidth: true
            Layout.fillHeight: true
            ScrollBar.vertical: ScrollBar {}

            delegate: JunkGroupCard {
                width: groupList.width
                theme: page.theme
                labels: page.labels
                enabled: !page.busy
                onToggleGroup: groupId => page.scanner.toggleGroupSelection(groupId)
                onToggleItem: (groupId, itemId) => page.scanner.toggleItemSelection(groupId, itemId)
                onCleanGroup: groupId => confirm.ask(groupId)
                onRevealItem: itemId => page.scanner.revealItem(itemId)
            }
        }
    }

    JunkConfirmDialog {
        id: confirm
        anchors.fill: parent
        scanner: page.scanner
        theme: page.theme
        labels: page.labels
    }
}
