import QtQuick
import QtQuick.Layouts
import "../components"

// The hero card of Smart Care: the score ring, the condition line, the summary sentence, the
// engine's status, the clean button with the "System Clean" badge, and the "Parameters" toggle.
Card {
    id: card

    required property var engine
    property color good: "#34c759"
    readonly property bool busy: engine.isScanning || engine.isCleaning

    // The clean button was pressed: the page shows the manifest.
    signal cleanRequested()
    // The "Parameters" button was pressed.
    signal parametersToggled()

    implicitHeight: Math.max(gauge.implicitHeight, texts.implicitHeight) + 44

    RowLayout {
        anchors.fill: parent
        anchors.margins: 22
        spacing: 28

        HealthGauge {
            id: gauge
            objectName: "healthGauge"
            theme: card.theme
            score: card.engine.healthScore
            green: card.engine.gaugeIsGreen
            good: card.good
            Layout.alignment: Qt.AlignVCenter
        }

        ColumnLayout {
            id: texts
            Layout.fillWidth: true
            Layout.alignment: Qt.AlignVCenter
            spacing: 8

            Text {
                objectName: "conditionText"
                text: card.engine.conditionText
                color: card.theme.textPrimary
                font.pixelSize: 20
                font.bold: true
                Layout.fillWidth: true
                wrapMode: Text.WordWrap
            }
            Text {
                objectName: "summarySentence"
                text: card.engine.summarySentence
                color: card.theme.textSecondary
                font.pixelSize: 13
                Layout.fillWidth: true
                wrapMode: Text.WordWrap
            }
            Text {
                objectName: "statusText"
                text: card.engine.progressText.length > 0
                      ? card.engine.statusMessage + "\n" + card.engine.progressText
                      : card.engine.statusMessage
                color: card.theme.textSecondary
                font.pixelSize: 12
                font.italic: true
                Layout.fillWidth: true
                wrapMode: Text.WordWrap
            }

            RowLayout {
                spacing: 10
                Layout.topMargin: 6

                ThemedButton {
                    objectName: "cleanButton"
                    theme: card.theme
                    prominent: true
                    text: card.engine.cleanButtonText
                    symbol: card.engine.isCleaning ? "" : "bolt.fill"
                    enabled: !card.busy
                    onClicked: card.cleanRequested()
                }
                ThemedButton {
                    objectName: "parametersButton"
                    theme: card.theme
                    text: "Parameters"
                    symbol: "info.circle"
                    onClicked: card.parametersToggled()
                }
                Rectangle {
                    objectName: "savedBadge"
                    visible: card.engine.hasCompletedClean
                    implicitWidth: savedRow.implicitWidth + 18
                    implicitHeight: 30
                    radius: 15
                    color: Qt.rgba(card.good.r, card.good.g, card.good.b, 0.15)

                    Row {
                        id: savedRow
                        anchors.centerIn: parent
                        spacing: 6
                        Icon {
                            anchors.verticalCenter: parent.verticalCenter
                            name: "checkmark.circle.fill"
                            color: card.good
                            size: 14
                        }
                        Text {
                            anchors.verticalCenter: parent.verticalCenter
                            text: "System Clean"
                            color: card.good
                            font.pixelSize: 12
                            font.bold: true
                        }
                        Text {
                            objectName: "savedText"
                            anchors.verticalCenter: parent.verticalCenter
                            text: card.engine.savedText
                            color: card.theme.textSecondary
                            font.pixelSize: 12
                        }
                    }
                }
            }
            Text {
                objectName: "cleanFailureText"
                visible: text.length > 0
                text: card.engine.cleanFailureText
                color: "#ff9f0a"
                font.pixelSize: 12
            }
        }
    }
}
