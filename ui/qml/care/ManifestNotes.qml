import QtQuick
import QtQuick.Layouts
import "../components"

// Below the manifest's rows: the Trash safety note, a line when the clean will ask for the
// administrator password, and the expandable explanation of why free space may differ.
ColumnLayout {
    id: notes

    required property var theme
    // The engine's labels: safetyHeading, safetyText, freeSpaceTitle, freeSpaceReasons.
    required property var labels
    property color good: "#34c759"
    property color warning: "#ff9f0a"
    property bool needsAdmin: false
    property bool showFreeSpaceInfo: false

    spacing: 10

    Card {
        theme: notes.theme
        Layout.fillWidth: true
        implicitHeight: safetyRow.implicitHeight + 28

        RowLayout {
            id: safetyRow
            anchors.fill: parent
            anchors.margins: 14
            spacing: 12
            Icon {
                name: "arrow.uturn.backward.circle.fill"
                color: notes.good
                size: 22
                Layout.alignment: Qt.AlignTop
            }
            ColumnLayout {
                spacing: 4
                Layout.fillWidth: true
                Text {
                    objectName: "safetyHeading"
                    text: notes.labels.safetyHeading
                    color: notes.theme.textPrimary
                    font.pixelSize: 13
                    font.bold: true
                }
                Text {
                    text: notes.labels.safetyText
                    color: notes.theme.textSecondary
                    font.pixelSize: 12
                    wrapMode: Text.WordWrap
                    Layout.fillWidth: true
                }
                Text {
                    objectName: "adminNote"
                    visible: notes.needsAdmin
                    text: "Some selected items belong to the system: one password prompt covers all of them."
                    color: notes.warning
                    font.pixelSize: 12
                    wrapMode: Text.WordWrap
                    Layout.fillWidth: true
                }
            }
        }
    }

    Card {
        theme: notes.theme
        Layout.fillWidth: true
        implicitHeight: infoColumn.implicitHeight + 28

        ColumnLayout {
            id: infoColumn
            anchors.fill: parent
            anchors.margins: 14
            spacing: 10

            RowLayout {
                objectName: "freeSpaceToggle"
                spacing: 10
                Layout.fillWidth: true
                Icon {
                    name: "info.circle.fill"
                    color: notes.theme.secondaryAccent
                    size: 18
                }
                Text {
                    objectName: "freeSpaceTitle"
                    text: notes.labels.freeSpaceTitle
                    color: notes.theme.textPrimary
                    font.pixelSize: 13
                    font.bold: true
                    wrapMode: Text.WordWrap
                    Layout.fillWidth: true
                }
                Icon {
                    name: notes.showFreeSpaceInfo ? "chevron.up" : "chevron.down"
                    color: notes.theme.textSecondary
                    size: 14
                }
                TapHandler {
                    onTapped: notes.showFreeSpaceInfo = !notes.showFreeSpaceInfo
                }
            }
            Repeater {
                model: notes.showFreeSpaceInfo ? notes.labels.freeSpaceReasons : []
                delegate: Text {
                    required property string modelData
                    objectName: "freeSpaceReason"
                    text: modelData
                    textFormat: Text.MarkdownText
                    color: notes.theme.textSecondary
                    font.pixelSize: 12
                    wrapMode: Text.WordWrap
                    Layout.fillWidth: true
                }
            }
        }
    }
}
