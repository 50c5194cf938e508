import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// The "Live Telemetry" screen: three metric cards, the CPU history, the memory allocation, the
// storage breakdown and a few facts about the machine. Sampling is started and stopped by the
// window when this section is shown or left; the page only displays the monitor's figures.
Rectangle {
    id: page

    required property var systemMonitor
    required property var theme

    readonly property var overview: systemMonitor.overview
    readonly property var cpu: overview.cpu
    readonly property var memory: overview.memory
    readonly property var disk: overview.disk
    readonly property var labels: systemMonitor.labels

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

            TelemetryHeader {
                Layout.fillWidth: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                theme: page.theme
                isLive: page.systemMonitor.isMonitoring
                subtitle: page.labels.headerSubtitle
            }

            RowLayout {
                Layout.fillWidth: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                spacing: 16

                MetricCard {
                    objectName: "processorCard"
                    Layout.fillWidth: true
                    Layout.preferredWidth: 1
                    theme: page.theme
                    title: "Processor Load"
                    iconName: "cpu"
                    valueText: page.cpu.formattedTotalUsage
                    subtitleText: page.cpu.formattedUserAndSystem
                    fraction: page.cpu.totalUsagePercent / 100
                    barColor: page.theme.accent
                }
                MetricCard {
                    objectName: "memoryCard"
                    Layout.fillWidth: true
                    Layout.preferredWidth: 1
                    theme: page.theme
                    title: "Memory Pressure"
                    iconName: "memorychip"
                    valueText: page.memory.formattedUsagePercent
                    subtitleText: page.memory.formattedUsedOfTotal
                    fraction: page.memory.usagePercent / 100
                    barColor: page.theme.secondaryAccent
                }
                MetricCard {
                    objectName: "storageCard"
                    Layout.fillWidth: true
                    Layout.preferredWidth: 1
                    theme: page.theme
                    title: page.labels.storageCardTitle
                    iconName: "internaldrive"
                    valueText: page.disk.formattedUsagePercent
                    subtitleText: page.disk.formattedUsedOfTotal
                    fraction: page.disk.usagePercent / 100
                    barColor: page.theme.accent
                }
            }

            CpuHistoryCard {
                Layout.fillWidth: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                theme: page.theme
                history: page.systemMonitor.cpuHistory
            }

            RowLayout {
                Layout.fillWidth: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                spacing: 16

                MemoryAllocationCard {
                    Layout.fillWidth: true
                    Layout.preferredWidth: 1
                    Layout.alignment: Qt.AlignTop
                    theme: page.theme
                    memory: page.memory
                }
                TelemetryStorageCard {
                    Layout.fillWidth: true
                    Layout.preferredWidth: 1
                    Layout.alignment: Qt.AlignTop
                    theme: page.theme
                    disk: page.disk
                availableLabel: page.labels.availableRowLabel
                }
            }

            SystemFactsCard {
                Layout.fillWidth: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                theme: page.theme
                overview: page.overview
                labels: page.labels
            }

            Item { Layout.preferredHeight: 12 }
        }
    }
}
