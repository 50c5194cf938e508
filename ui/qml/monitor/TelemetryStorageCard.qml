import QtQuick
import QtQuick.Layouts

// The storage breakdown of the start-up volume: total, used, available, purgeable, free, and
// the blocks reserved for root where the volume keeps any.
TelemetrySectionCard {
    id: card

    /// The "disk" map of the monitor's overview.
    property var disk: ({})
    property string availableLabel

    title: "Storage"
    iconName: "internaldrive.fill"
    note: "Total: " + (disk.formattedTotal || "")

    TelemetryFigureRow {
        Layout.fillWidth: true
        theme: card.theme
        label: "Used Space"
        valueText: card.disk.formattedUsed || ""
        valueColor: card.theme.accent
    }
    TelemetryFigureRow {
        Layout.fillWidth: true
        theme: card.theme
        label: card.availableLabel
        valueText: card.disk.formattedEffectiveAvailable || ""
        valueColor: card.theme.secondaryAccent
    }
    TelemetryFigureRow {
        Layout.fillWidth: true
        theme: card.theme
        label: "Purgeable"
        valueText: card.disk.formattedPurgeable || ""
    }
    TelemetryFigureRow {
        Layout.fillWidth: true
        theme: card.theme
        label: "Physical Free"
        valueText: card.disk.formattedFree || ""
    }
    TelemetryFigureRow {
        Layout.fillWidth: true
        visible: (card.disk.reservedBytes || 0) > 0
        theme: card.theme
        label: "Reserved for the system"
        valueText: card.disk.formattedReserved || ""
    }
}
