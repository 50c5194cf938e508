import QtQuick
import QtQuick.Layouts

// "CPU Activity History": the last 20 total CPU percentages, oldest on the left, 0..100 scale.
SectionCard {
    id: card

    /// The monitor's cpuHistory (20 values, 0..100).
    property var history: []

    title: "CPU Activity History"
    iconName: "chart.xyaxis.line"
    note: "Last 30 Seconds"

    Item {
        Layout.fillWidth: true
        Layout.preferredHeight: 160

        Row {
            objectName: "cpuHistoryBars"
            anchors.fill: parent
            spacing: 4
            Repeater {
                model: card.history
                Item {
                    required property real modelData
                    width: (parent.width - 19 * 4) / 20
                    height: parent.height
                    Rectangle {
                        anchors.bottom: parent.bottom
                        width: parent.width
                        height: Math.max(2, parent.height * Math.min(100, modelData) / 100)
                        radius: 3
                        gradient: Gradient {
                            GradientStop { position: 0; color: card.theme.accent }
                            GradientStop { position: 1; color: card.theme.secondaryAccent }
                        }
                    }
                }
            }
        }
    }
}
