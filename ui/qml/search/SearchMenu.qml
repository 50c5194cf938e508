import QtQuick
import QtQuick.Controls
import "../components"

// A drop-down menu over a list of labels, painted from the theme.
ComboBox {
    id: menu

    required property var theme

    implicitHeight: 34
    implicitWidth: 150
    hoverEnabled: true

    contentItem: Text {
        leftPadding: 12
        rightPadding: menu.indicator.width + 6
        text: menu.displayText
        color: menu.theme.textPrimary
        font.pixelSize: 13
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
    }

    indicator: Icon {
        x: menu.width - width - 10
        anchors.verticalCenter: menu.verticalCenter
        name: "chevron.down"
        size: 11
        color: menu.theme.textSecondary
    }

    background: Rectangle {
        radius: 9
        color: menu.theme.cardBackground
        border.color: menu.activeFocus ? menu.theme.accent : menu.theme.border
    }

    delegate: ItemDelegate {
        required property int index
        required property var modelData
        width: menu.width
        highlighted: menu.highlightedIndex === index
        contentItem: Text {
            text: parent.modelData
            color: menu.theme.textPrimary
            font.pixelSize: 13
            font.bold: parent.index === menu.currentIndex
        }
    }
}
