import QtQuick
import QtQuick.Layouts

// Facts about the machine read when the monitor was created: name, OS version, uptime.
TelemetrySectionCard {
    id: card

    /// The monitor's overview map.
    property var overview: ({})
    /// The monitor's labels map (platform words for "Mac Name" and "macOS Version").
    property var labels: ({})

    title: "System"
    iconName: "info.circle.fill"

    TelemetryFigureRow {
        Layout.fillWidth: true
        theme: card.theme
        label: card.labels.hostNameLabel || ""
        valueText: card.overview.hostName || ""
    }
    TelemetryFigureRow {
        Layout.fillWidth: true
        theme: card.theme
        label: card.labels.osVersionLabel || ""
        valueText: card.overview.osVersion || ""
    }
    TelemetryFigureRow {
        Layout.fillWidth: true
        theme: card.theme
        label: "System Uptime"
        valueText: card.overview.formattedUptime || ""
    }
}
