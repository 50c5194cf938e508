import QtQuick
import QtQuick.Layouts

// One theme on the theme screen: its accent dot, the check mark when current, its name and
// description, and swatches of its background, card, accent and secondary accent colours.
// Reachable with Tab; Space or Enter picks it, as a click does.
Rectangle {
    id: card

    required property var theme
    required property var entry
    property bool isCurrent: false

    signal picked()

    objectName: "themeCard_" + entry.name
    activeFocusOnTab: true
    Keys.onSpacePressed: card.picked()
    Keys.onReturnPressed: card.picked()
    Keys.onEnterPressed: card.picked()
    implicitHeight: content.implicitHeight + 36
    radius: 14
    color: theme.cardBackground
    border.color: isCurrent ? theme.accent : theme.border
    border.width: isCurrent ? 2 : 1

    ColumnLayout {
        id: content
        anchors.fill: parent
        anchors.margins: 18
        spacing: 10

        RowLayout {
            Layout.fillWidth: true
            Rectangle {
                width: 14
                height: 14
                radius: 7
                color: card.entry.accent
            }
            Item { Layout.fillWidth: true }
            Icon {
                objectName: "checkMark"
                visible: card.isCurrent
                name: "checkmark.circle.fill"
                color: card.theme.accent
                size: 20
            }
        }
        Text {
            text: card.entry.name
            color: card.theme.textPrimary
            font.pixelSize: 16
            font.bold: true
        }
        Text {
            text: card.entry.description
            color: card.theme.textSecondary
            font.pixelSize: 12
            wrapMode: Text.WordWrap
            Layout.fillWidth: true
        }
        RowLayout {
            spacing: 8
            Layout.topMargin: 4
            Repeater {
                model: [card.entry.background, card.entry.cardBackground, card.entry.accent,
                        card.entry.secondaryAccent]
                delegate: Rectangle {
                    required property color modelData
                    Layout.fillWidth: true
                    implicitHeight: 26
                    radius: 6
                    color: modelData
                    border.width: 0.5
                    border.color: Qt.rgba(1, 1, 1, 0.2)
                }
            }
        }
    }

    FocusRing {
        theme: card.theme
        shown: card.activeFocus
        radius: 17
    }

    MouseArea {
        anchors.fill: parent
        cursorShape: Qt.PointingHandCursor
        onClicked: card.picked()
    }
}
