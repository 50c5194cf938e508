import QtQuick
import QtQuick.Layouts

// "Memory Allocation": a bar split into active, wired and compressed shares of total memory,
// and the four figures as pills.
TelemetrySectionCard {
    id: card

    /// The "memory" map of the monitor's overview.
    property var memory: ({})

    readonly property color activeColor: theme.accent
    readonly property color wiredColor: theme.secondaryAccent
    readonly property color compressedColor: Qt.rgba(theme.textSecondary.r, theme.textSecondary.g,
                                                      theme.textSecondary.b, 0.8)

    title: "Memory Allocation"
    iconName: "memorychip.fill"

    Rectangle {
        id: bar
        Layout.fillWidth: true
        Layout.preferredHeight: 14
        radius: 7
        color: card.theme.border
        clip: true
        Row {
            anchors.fill: parent
            Rectangle {
                width: bar.width * (card.memory.activeFraction || 0)
                height: bar.height
                color: card.activeColor
            }
            Rectangle {
                width: bar.width * (card.memory.wiredFraction || 0)
                height: bar.height
                color: card.wiredColor
            }
            Rectangle {
                width: bar.width * (card.memory.compressedFraction || 0)
                height: bar.height
                color: card.compressedColor
            }
        }
    }

    Flow {
        Layout.fillWidth: true
        spacing: 8
        MemoryStatPill {
            theme: card.theme
            label: "Active"
            valueText: card.memory.formattedActive || ""
            dotColor: card.activeColor
        }
        MemoryStatPill {
            theme: card.theme
            label: "Wired"
            valueText: card.memory.formattedWired || ""
            dotColor: card.wiredColor
        }
        MemoryStatPill {
            theme: card.theme
            label: "Compressed"
            valueText: card.memory.formattedCompressed || ""
            dotColor: card.compressedColor
        }
        MemoryStatPill {
            theme: card.theme
            label: "Free"
            valueText: card.memory.formattedFree || ""
            dotColor: "transparent"
        }
    }
}
