import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import "../components"

// The pre-flight manifest: the five categories with their switches and their exact items, the
// safety note, why free space may differ afterwards, and the selected total. Executing cleans
// exactly the rows switched on and closes the sheet.
Popup {
    id: sheet

    required property var engine
    required property var theme
    property color good: "#34c759"
    property color warning: "#ff9f0a"
    readonly property var labels: engine.labels

    parent: Overlay.overlay
    anchors.centerIn: parent
    width: Math.min(760, parent ? parent.width - 60 : 760)
    height: parent ? parent.height - 60 : 700
    modal: true
    padding: 0
    onAboutToShow: {
        engine.resetSwitches()
        notes.showFreeSpaceInfo = false
    }

    background: Rectangle {
        radius: 16
        color: Qt.tint(sheet.theme.background, sheet.theme.cardBackground)
        border.color: sheet.theme.border
    }

    contentItem: ColumnLayout {
        spacing: 0

        ManifestHeader {
            Layout.fillWidth: true
            Layout.margins: 20
            theme: sheet.theme
            onCloseRequested: sheet.close()
        }

        ScrollView {
            id: scroll
            objectName: "manifestScroll"
            Layout.fillWidth: true
            Layout.fillHeight: true
            contentWidth: availableWidth
            clip: true

            ColumnLayout {
                width: scroll.availableWidth - 40
                x: 20
                spacing: 10

                Repeater {
                    model: sheet.engine.manifestRows
                    delegate: ManifestCategoryRow {
                        required property var modelData
                        objectName: "manifestRow"
                        theme: sheet.theme
                        row: modelData
                        checked: sheet.engine.switchStates[modelData.category]
                        good: sheet.good
                        warning: sheet.warning
                        Layout.fillWidth: true
                        onToggled: on => sheet.engine.setCategorySwitch(modelData.category, on)
                    }
                }

                ManifestNotes {
                    id: notes
                    objectName: "manifestNotes"
                    Layout.fillWidth: true
                    theme: sheet.theme
                    labels: sheet.labels
                    good: sheet.good
                    warning: sheet.warning
                    needsAdmin: sheet.engine.selectionNeedsAdmin
                }

                Item { Layout.preferredHeight: 6 }
            }
        }

        Rectangle {
            Layout.fillWidth: true
            Layout.preferredHeight: 1
            color: sheet.theme.border
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.margins: 16
            spacing: 10

            ColumnLayout {
                spacing: 0
                Text {
                    text: "Selected for Cleanup:"
                    color: sheet.theme.textSecondary
                    font.pixelSize: 11
                }
                Text {
                    objectName: "selectedTotalText"
                    text: sheet.engine.selectedTotalText
                    color: sheet.theme.textPrimary
                    font.pixelSize: 18
                    font.bold: true
                }
            }
            Item { Layout.fillWidth: true }
            ThemedButton {
                objectName: "cancelButton"
                theme: sheet.theme
                text: "Cancel"
                onClicked: sheet.close()
            }
            ThemedButton {
                objectName: "executeButton"
                theme: sheet.theme
                prominent: true
                symbol: "bolt.fill"
                text: sheet.engine.executeButtonText
                enabled: sheet.engine.canExecute && !sheet.engine.isScanning
                         && !sheet.engine.isCleaning
                onClicked: {
                    sheet.engine.cleanAll()
                    sheet.close()
                }
            }
        }
    }
}
