import QtQuick
import QtQuick.Layouts

// Facts about the machine read when the monitor was created: name, OS version, uptime.
SectionCard {
    id: card

    /// The monitor's overview map.
    property var overview: ({})
    /// The monitor's labels map (platform words for "Mac Name" and "macOS Version").
    property var labels: ({})

    title: "System"
    iconName: "info.circle.fill"

    FigureRow {
        Layout.fillWidth: true
        theme: card.theme
        label: card.labels.hostNameLabel || ""
        valueText: card.overview.hostName || ""
    }
    FigureRow {
        Layout.fillWidth: true
        theme: card.theme
        label: card.labels.osVersionLabel || ""
        valueText: card.overview.osVersion || ""
    }
    FigureRow {
        Layout.fillWidth: true
        theme: card.theme
        label: "System Uptime"
        valueText: card.overview.formattedUptime || ""
    }
}
