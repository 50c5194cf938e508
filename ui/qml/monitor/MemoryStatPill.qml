import QtQuick
import QtQuick.Layouts

// A small labelled figure of the memory breakdown: colour dot, label and formatted byte count.
Rectangle {
    id: pill

    required property var theme
    property string label
    property string valueText
    property color dotColor: theme.accent

    implicitWidth: row.implicitWidth + 20
    implicitHeight: row.implicitHeight + 12
    radius: 8
    color: theme.background
    border.color: theme.border

    RowLayout {
        id: row
        anchors.centerIn: parent
        spacing: 6
        Rectangle {
            implicitWidth: 8
            implicitHeight: 8
            radius: 4
            color: pill.dotColor
            border.color: pill.theme.textSecondary
            border.width: pill.dotColor.a < 0.2 ? 1 : 0
        }
        Text {
            text: pill.label
            color: pill.theme.textSecondary
            font.pixelSize: 12
        }
        Text {
            objectName: "pillValue"
            text: pill.valueText
            color: pill.theme.textPrimary
            font.pixelSize: 12
            font.weight: Font.DemiBold
        }
    }
}
