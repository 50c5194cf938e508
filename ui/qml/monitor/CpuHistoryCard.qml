import QtQuick
import QtQuick.Layouts
import Sondrel

// "CPU Activity History": the last 20 total CPU percentages, oldest on the left, 0..100 scale.
TelemetrySectionCard {
    id: card

    /// The monitor's cpuHistory (20 values, 0..100).
    property var history: []

    title: "CPU Activity History"
    iconName: "chart.xyaxis.line"
    note: "Last 30 Seconds"

    CpuHistoryChart {
        objectName: "cpuHistoryChart"
        Layout.fillWidth: true
        Layout.preferredHeight: 160
        values: card.history
        lineColor: card.theme.accent
        secondaryColor: card.theme.secondaryAccent
        gridColor: card.theme.border
    }
}
