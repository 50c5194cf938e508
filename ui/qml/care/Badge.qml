import QtQuick

// A small rounded label in a tint of its colour ("DRY RUN", "Safe to Clean").
Rectangle {
    id: badge

    property alias text: label.text
    property color tint: "white"

    implicitWidth: label.implicitWidth + 14
    implicitHeight: label.implicitHeight + 6
    radius: height / 2
    color: Qt.rgba(tint.r, tint.g, tint.b, 0.16)
    border.color: Qt.rgba(tint.r, tint.g, tint.b, 0.4)

    Text {
        id: label
        anchors.centerIn: parent
        color: badge.tint
        font.pixelSize: 10
        font.bold: true
    }
}
