import QtQuick
import QtQuick.Layouts
import "../components"

// One sub-score of the health score: icon, title, "score/maximum" and a detail line, in green
// or orange.
Card {
    id: card

    property string icon
    property string title
    property int score: 0
    property int maximum: 0
    property string detail
    property color accent: "white"

    implicitHeight: 96

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 14
        spacing: 4

        RowLayout {
            spacing: 8
            Icon {
                name: card.icon
                color: card.accent
                size: 16
            }
            Text {
                text: card.title
                color: card.theme.textSecondary
                font.pixelSize: 12
                font.bold: true
                Layout.fillWidth: true
                elide: Text.ElideRight
            }
        }
        Text {
            objectName: "scoreText"
            text: card.score + "/" + card.maximum
            color: card.accent
            font.pixelSize: 22
            font.bold: true
        }
        Text {
            objectName: "detailText"
            text: card.detail
            color: card.theme.textSecondary
            font.pixelSize: 11
            Layout.fillWidth: true
            elide: Text.ElideRight
        }
    }
}
