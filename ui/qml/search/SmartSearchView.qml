import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import "../components"

// "Intelligent Search": the large files of the user's folders, the home with its cloud folders,
// the main window's target folder or the whole drive, narrowed as the user types. All state
// lives in the engine `search`.
// Keys: Ctrl+F search field; in the list Up/Down move, Shift extends, Space toggles, Ctrl+A
// selects all, Return shows the file, Delete asks to move the selection to the Trash.
Rectangle {
    id: page

    required property var search
    required property var theme
    readonly property var results: search.results
    readonly property var labels: search.labels

    color: theme.background

    function askTrash(row) {
        if (!page.search.canTrash)
            return
        if (row >= 0)
            page.results.prepareTrash(row)
        if (page.results.selectedCount > 0)
            trashDialog.open()
    }

    Shortcut {
        sequence: StandardKey.Find
        enabled: page.visible
        onActivated: filterBar.field.forceActiveFocus()
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 28
        spacing: 16

        SectionHeader {
            theme: page.theme
            title: page.labels.title
            subtitle: page.labels.subtitle
            symbol: "magnifyingglass"
            Layout.fillWidth: true
        }

        RowLayout {
            spacing: 10
            Layout.fillWidth: true

            BusyIndicator {
                visible: page.search.isSearching
                running: visible
                Layout.preferredWidth: 22
                Layout.preferredHeight: 22
            }
            Text {
                objectName: "statusText"
                text: page.search.statusText
                color: page.theme.textSecondary
                font.pixelSize: 13
            }
            Text {
                objectName: "progressText"
                visible: text.length > 0
                text: page.search.progressText
                color: page.theme.textSecondary
                font.pixelSize: 12
                Layout.fillWidth: true
                elide: Text.ElideRight
            }
            Item {
                Layout.fillWidth: true
                visible: !page.search.isSearching
            }
            ThemedButton {
                objectName: "cancelSearchButton"
                visible: page.search.isSearching
                theme: page.theme
                text: page.labels.cancel
                onClicked: page.search.cancel()
            }
            // The ways to start a search; hidden while one runs, when Cancel stands here.
            ThemedButton {
                objectName: "searchTargetButton"
                visible: page.search.hasCustomTarget && !page.search.isSearching
                theme: page.theme
                text: page.search.scanTargetText
                symbol: "folder"
                enabled: !page.search.isTrashing
                onClicked: page.search.scanTarget()
            }
            ThemedButton {
                objectName: "searchHomeAgainButton"
                visible: page.search.hasSearched && !page.search.isSearching
                theme: page.theme
                text: page.labels.scanHome
                symbol: "house.fill"
                enabled: !page.search.isTrashing
                onClicked: page.search.scanHome()
            }
            ThemedButton {
                objectName: "searchDriveButton"
                visible: !page.search.isSearching
                theme: page.theme
                text: page.labels.scanDrive
                symbol: "internaldrive.fill"
                prominent: true
                enabled: !page.search.isTrashing
                onClicked: page.search.scanDrive()
            }
        }

        SearchFilterBar {
            id: filterBar
            search: page.search
            theme: page.theme
            Layout.fillWidth: true
            onListFocusRequested: list.forceActiveFocus()
        }

        Card {
            theme: page.theme
            Layout.fillWidth: true
            Layout.fillHeight: true

            ColumnLayout {
                objectName: "searchEmptyState"
                visible: !page.search.hasSearched
                anchors.centerIn: parent
                spacing: 12

                Icon {
                    name: "magnifyingglass.circle"
                    size: 56
                    color: page.theme.textSecondary
                    Layout.alignment: Qt.AlignHCenter
                }
                Text {
                    text: page.labels.noSearchRun
                    color: page.theme.textPrimary
                    font.pixelSize: 18
                    font.bold: true
                    Layout.alignment: Qt.AlignHCenter
                }
                Text {
                    text: page.labels.noSearchRunHint
                    color: page.theme.textSecondary
                    font.pixelSize: 13
                    Layout.alignment: Qt.AlignHCenter
                }
                ThemedButton {
                    objectName: "searchHomeButton"
                    theme: page.theme
                    text: page.labels.scanHome
                    symbol: "house.fill"
                    prominent: true
                    enabled: !page.search.isSearching
                    onClicked: page.search.scanHome()
                    Layout.alignment: Qt.AlignHCenter
                    Layout.topMargin: 6
                }
            }

            Text {
                objectName: "noMatchesText"
                visible: page.search.hasSearched && text.length > 0
                anchors.centerIn: parent
                text: page.results.emptyText
                color: page.theme.textSecondary
                font.pixelSize: 14
            }

            ListView {
                id: list
                objectName: "resultsList"
                visible: page.search.hasSearched
                anchors.fill: parent
                anchors.margins: 8
                clip: true
                spacing: 2
                model: page.results
                currentIndex: page.results.currentRow
                keyNavigationEnabled: false
                activeFocusOnTab: true
                ScrollBar.vertical: ScrollBar {}

                delegate: SearchResultRow {
                    width: ListView.view.width
                    theme: page.theme
                    labels: page.labels
                    canTrash: page.search.canTrash
                    current: list.activeFocus && index === page.results.currentRow
                    onClicked: modifiers => {
                        list.forceActiveFocus()
                        page.results.select(index, (modifiers & Qt.ControlModifier) !== 0,
                                            (modifiers & Qt.ShiftModifier) !== 0)
                    }
                    onRevealRequested: page.search.revealRow(index)
                    onTrashRequested: page.askTrash(index)
                }

                function step(delta, extend) {
                    const row = Math.max(0, Math.min(count - 1, page.results.currentRow + delta))
                    if (extend) {
                        page.results.select(row, false, true)
                        page.results.currentRow = row
                    } else {
                        page.results.select(row)
                    }
                    positionViewAtIndex(row, ListView.Contain)
                }
                Keys.onUpPressed: event => step(-1, event.modifiers & Qt.ShiftModifier)
                Keys.onDownPressed: event => step(1, event.modifiers & Qt.ShiftModifier)
                Keys.onSpacePressed: page.results.select(page.results.currentRow, true)
                Keys.onReturnPressed: page.search.revealRow(page.results.currentRow)
                Keys.onDeletePressed: page.askTrash(-1)
                Keys.onPressed: event => {
                    if (event.matches(StandardKey.SelectAll)) {
                        page.results.selectAll()
                        event.accepted = true
                    }
                }
            }
        }

        RowLayout {
            spacing: 12
            visible: page.search.hasSearched
            Layout.fillWidth: true

            Text {
                objectName: "footerText"
                text: page.results.footerText
                color: page.theme.textSecondary
                font.pixelSize: 13
            }
            ThemedButton {
                objectName: "showAllButton"
                visible: page.results.canShowAll
                theme: page.theme
                text: page.results.showAllText
                onClicked: page.results.showAll()
            }
            Text {
                objectName: "noticeText"
                text: page.search.noticeText
                color: page.theme.textSecondary
                font.pixelSize: 12
                elide: Text.ElideRight
                Layout.fillWidth: true
            }
            ThemedButton {
                objectName: "trashSelectedButton"
                visible: page.results.selectedCount > 1
                theme: page.theme
                text: page.labels.moveSelectedToTrash
                symbol: "trash"
                enabled: page.search.canTrash
                onClicked: page.askTrash(-1)
            }
        }
    }

    TrashConfirmDialog {
        id: trashDialog
        search: page.search
        theme: page.theme
    }
}
