import QtQuick
import QtQuick.Layouts
import "../components"

// One tile of "Optimization Breakdown": a category's icon, title, subtitle and reclaimable
// size, or an information tile without a size.
Card {
    id: card

    // A map of the engine's categoryCards: title, subtitle, icon, formattedSize, isInfoCard.
    required property var entry
    property color accent: theme.accent

    implicitHeight: column.implicitHeight + 28

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: 14
        spacing: 6

        Rectangle {
            Layout.preferredWidth: 32
            Layout.preferredHeight: 32
            radius: 9
            color: Qt.rgba(card.accent.r, card.accent.g, card.accent.b, 0.16)
            Icon {
                anchors.centerIn: parent
                name: card.entry.icon
                color: card.accent
                size: 17
            }
        }
        Text {
            objectName: "cardTitle"
            text: card.entry.title
            color: card.theme.textPrimary
            font.pixelSize: 13
            font.bold: true
            Layout.fillWidth: true
            elide: Text.ElideRight
        }
        Text {
            text: card.entry.subtitle
            color: card.theme.textSecondary
            font.pixelSize: 11
            Layout.fillWidth: true
            elide: Text.ElideRight
        }
        Text {
            objectName: "cardSize"
            // The information tile keeps the line empty so that every tile has one height.
            opacity: card.entry.isInfoCard ? 0 : 1
            text: card.entry.formattedSize
            color: card.accent
            font.pixelSize: 15
            font.bold: true
        }
    }
}
