import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import "../components"

// The Smart Care screen: the health score ring with its condition line, the one-click clean
// (which first shows the manifest sheet), the three sub-scores, the reclaimable bytes by
// category and a note on free space and safety. Everything shown comes from the engine.
Rectangle {
    id: page

    required property var engine
    required property var theme

    readonly property var summary: engine.summary
    readonly property var labels: engine.labels
    readonly property bool busy: engine.isScanning || engine.isCleaning
    readonly property color good: "#34c759"
    readonly property color warning: "#ff9f0a"
    property bool showParametersInfo: false

    // Opens the manifest sheet (the clean button does so).
    function openManifest() {
        manifest.open()
    }

    color: theme.background

    ScrollView {
        id: scroll
        anchors.fill: parent
        contentWidth: availableWidth
        clip: true

        ColumnLayout {
            width: scroll.availableWidth
            spacing: 18

            Item { Layout.preferredHeight: 6 }

            RowLayout {
                Layout.fillWidth: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                spacing: 12

                SectionHeader {
                    theme: page.theme
                    title: "Smart Care & Health Score"
                    subtitle: "Instant 1-Click disk hygiene, developer bloat purge, and orphaned residue cleaner"
                    symbol: "bolt.shield.fill"
                    Layout.fillWidth: true
                }
                ThemedButton {
                    objectName: "scanAgainButton"
                    theme: page.theme
                    text: "Scan Again"
                    symbol: "arrow.triangle.2.circlepath"
                    enabled: !page.busy
                    onClicked: page.engine.runSmartScan()
                }
            }

            HealthOverview {
                Layout.fillWidth: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                engine: page.engine
                theme: page.theme
                good: page.good
                onCleanRequested: page.openManifest()
                onParametersToggled: page.showParametersInfo = !page.showParametersInfo
            }

            Card {
                objectName: "parametersPanel"
                visible: page.showParametersInfo
                theme: page.theme
                Layout.fillWidth: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                implicitHeight: parametersColumn.implicitHeight + 32

                ColumnLayout {
                    id: parametersColumn
                    anchors.fill: parent
                    anchors.margins: 16
                    spacing: 12

                    RowLayout {
                        spacing: 8
                        Icon {
                            name: "slider.horizontal.3"
                            color: page.theme.accent
                            size: 16
                        }
                        Text {
                            text: "Health Score Evaluation Parameters"
                            color: page.theme.textPrimary
                            font.pixelSize: 14
                            font.bold: true
                        }
                    }
                    RowLayout {
                        spacing: 12
                        Layout.fillWidth: true
                        ParameterMiniCard {
                            objectName: "diskHygieneCard"
                            theme: page.theme
                            Layout.fillWidth: true
                            Layout.preferredWidth: 1
                            icon: "sparkles"
                            title: "Disk Hygiene"
                            score: page.engine.clutterScore
                            maximum: 60
                            detail: page.engine.clutterDetail
                            accent: score >= 50 ? page.good : page.warning
                        }
                        ParameterMiniCard {
                            objectName: "storageHeadroomCard"
                            theme: page.theme
                            Layout.fillWidth: true
                            Layout.preferredWidth: 1
                            icon: "internaldrive"
                            title: "Storage Headroom"
                            score: page.engine.diskScore
                            maximum: 25
                            detail: "Operating Space Normal"
                            accent: score >= 20 ? page.good : page.warning
                        }
                        ParameterMiniCard {
                            objectName: "memoryPressureCard"
                            theme: page.theme
                            Layout.fillWidth: true
                            Layout.preferredWidth: 1
                            icon: "memorychip"
                            title: "Memory Pressure"
                            score: page.engine.memoryScore
                            maximum: 15
                            detail: "Cache & Swap Stable"
                            accent: score >= 12 ? page.good : page.warning
                        }
                    }
                }
            }

            Text {
                Layout.leftMargin: 24
                text: "Optimization Breakdown"
                color: page.theme.textPrimary
                font.pixelSize: 17
                font.bold: true
            }

            GridLayout {
                Layout.fillWidth: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                columns: 3
                columnSpacing: 12
                rowSpacing: 12

                Repeater {
                    model: page.engine.categoryCards
                    delegate: CategoryCleanCard {
                        required property var modelData
                        objectName: "categoryCard"
                        theme: page.theme
                        entry: modelData
                        accent: modelData.isInfoCard ? page.good : page.theme.accent
                        Layout.fillWidth: true
                        Layout.preferredWidth: 1
                    }
                }
            }

            Card {
                objectName: "transparencyCard"
                theme: page.theme
                Layout.fillWidth: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                implicitHeight: transparencyColumn.implicitHeight + 32

                ColumnLayout {
                    id: transparencyColumn
                    anchors.fill: parent
                    anchors.margins: 16
                    spacing: 10

                    RowLayout {
                        spacing: 8
                        Layout.fillWidth: true
                        Icon {
                            name: "internaldrive.badge.questionmark"
                            color: page.theme.secondaryAccent
                            size: 16
                        }
                        Text {
                            text: "Storage & Permission Transparency"
                            color: page.theme.textPrimary
                            font.pixelSize: 14
                            font.bold: true
                            Layout.fillWidth: true
                        }
                        Badge {
                            text: page.labels.transparencyBadge
                            tint: page.theme.secondaryAccent
                        }
                    }
                    Text {
                        objectName: "transparencyText"
                        text: page.labels.transparencyText
                        textFormat: Text.MarkdownText
                        color: page.theme.textSecondary
                        font.pixelSize: 12
                        wrapMode: Text.WordWrap
                        Layout.fillWidth: true
                    }
                }
            }

            Item { Layout.preferredHeight: 12 }
        }
    }

    ManifestSheet {
        id: manifest
        objectName: "manifestSheet"
        engine: page.engine
        theme: page.theme
        good: page.good
        warning: page.warning
    }
}
