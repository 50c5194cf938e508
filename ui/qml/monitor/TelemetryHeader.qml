import QtQuick
import QtQuick.Layouts

// Title row of the telemetry screen with the "Live Updating" indicator on the right.
RowLayout {
    id: header

    required property var theme
    /// True while the monitor samples; the indicator dims when it does not.
    property bool isLive: false
    property string subtitle

    spacing: 12

    ColumnLayout {
        Layout.fillWidth: true
        spacing: 4
        Text {
            text: "Live Telemetry"
            color: header.theme.textPrimary
            font.pixelSize: 26
            font.weight: Font.Bold
        }
        Text {
            Layout.fillWidth: true
            text: header.subtitle
            color: header.theme.textSecondary
            font.pixelSize: 13
            wrapMode: Text.WordWrap
        }
    }

    Rectangle {
        objectName: "liveIndicator"
        Layout.alignment: Qt.AlignVCenter
        implicitWidth: liveRow.implicitWidth + 24
        implicitHeight: liveRow.implicitHeight + 12
        radius: height / 2
        color: header.theme.cardBackground
        border.color: header.theme.border
        opacity: header.isLive ? 1 : 0.5

        RowLayout {
            id: liveRow
            anchors.centerIn: parent
            spacing: 6
            Rectangle {
                implicitWidth: 8
                implicitHeight: 8
                radius: 4
                color: header.theme.accent
            }
            Text {
                text: "Live Updating"
                color: header.theme.textPrimary
                font.pixelSize: 12
                font.weight: Font.DemiBold
            }
        }
    }
}
