import QtQuick
import QtQuick.Layouts

// One "label ... value" line of a telemetry card.
RowLayout {
    id: row

    required property var theme
    property string label
    property string valueText
    property color valueColor: theme.textPrimary

    spacing: 12
    Text {
        Layout.fillWidth: true
        text: row.label
        color: row.theme.textSecondary
        font.pixelSize: 13
        elide: Text.ElideRight
    }
    Text {
        objectName: "figureValue"
        text: row.valueText
        color: row.valueColor
        font.pixelSize: 13
        font.weight: Font.DemiBold
        horizontalAlignment: Text.AlignRight
    }
}
