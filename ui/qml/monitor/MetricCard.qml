import QtQuick
import QtQuick.Layouts
import "../components"

// One headline figure of the telemetry screen: title, big value, a subtitle and a bar.
Rectangle {
    id: card

    required property var theme
    property string title
    property string iconName
    property string valueText
    property string subtitleText
    /// Bar fill, 0..1.
    property real fraction: 0
    property color barColor: theme.accent

    implicitHeight: column.implicitHeight + 32
    radius: 14
    color: theme.cardBackground
    border.color: theme.border
    border.width: 1

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: 16
        spacing: 8

        RowLayout {
            spacing: 8
            Icon {
                name: card.iconName
                color: card.barColor
                size: 16
            }
            Text {
                Layout.fillWidth: true
                text: card.title
                color: card.theme.textSecondary
                font.pixelSize: 13
                font.weight: Font.DemiBold
                elide: Text.ElideRight
            }
        }
        Text {
            objectName: "valueText"
            text: card.valueText
            color: card.theme.textPrimary
            font.pixelSize: 34
            font.weight: Font.Bold
        }
        Text {
            objectName: "subtitleText"
            Layout.fillWidth: true
            text: card.subtitleText
            color: card.theme.textSecondary
            font.pixelSize: 12
            elide: Text.ElideRight
        }
        Rectangle {
            Layout.fillWidth: true
            Layout.preferredHeight: 6
            radius: 3
            color: card.theme.border
            Rectangle {
                width: parent.width * Math.max(0, Math.min(1, card.fraction))
                height: parent.height
                radius: 3
                color: card.barColor
            }
        }
    }
}
