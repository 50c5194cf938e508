import QtQuick
import QtQuick.Layouts

// Facts about the machine read when the monitor was created: name, OS version, uptime.
SectionCard {
    id: card

    /// The monitor's overview map.
    property var overview: ({})

    title: "System"
    iconName: "info.circle.fill"

    FigureRow {
        Layout.fillWidth: true
        theme: card.theme
        label: "Mac Name"
        valueText: card.overview.hostName || ""
    }
    FigureRow {
        Layout.fillWidth: true
        theme: card.theme
        label: "macOS Version"
        valueText: card.overview.osVersion || ""
    }
    FigureRow {
        Layout.fillWidth: true
        theme: card.theme
        label: "System Uptime"
        valueText: card.overview.formattedUptime || ""
    }
}
