import QtQuick
import QtQuick.Layouts

// A section whose engine is not part of this build yet: its header and one honest line, no
// figures.
Rectangle {
    id: page

    required property var theme
    // The section's row of the section table (title, symbol, page).
    required property var section
    readonly property string title: section.title
    readonly property string symbol: section.symbol

    color: theme.background

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 28
        spacing: 22

        SectionHeader {
            theme: page.theme
            title: page.title
            symbol: page.symbol
            Layout.fillWidth: true
        }

        Card {
            theme: page.theme
            Layout.fillWidth: true
            Layout.preferredHeight: 88

            RowLayout {
                anchors.fill: parent
                anchors.margins: 22
                spacing: 12

                Icon {
                    name: "info.circle.fill"
                    color: page.theme.secondaryAccent
                    size: 20
                }
                Text {
                    objectName: "unavailableText"
                    text: page.title + " is not available yet in this version of Sondrel."
                    color: page.theme.textSecondary
                    font.pixelSize: 14
                    wrapMode: Text.WordWrap
                    Layout.fillWidth: true
                }
            }
        }

        Item {
            Layout.fillHeight: true
        }
    }
}
