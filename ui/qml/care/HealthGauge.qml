import QtQuick
import Sondrel

// The health score ring: filled to score / 100, its colour running from green (80 and more)
// or the theme's secondary accent to the theme's accent, with the score and "HEALTH" inside.
Item {
    id: gauge

    required property var theme
    property int score: 0
    property bool green: false
    // The green of a healthy score (the same in every theme).
    property color good: "#34c759"
    readonly property color startColor: green ? good : theme.secondaryAccent

    implicitWidth: 168
    implicitHeight: 168

    HealthRing {
        objectName: "healthRing"
        anchors.fill: parent
        fraction: gauge.score / 100
        startColor: gauge.startColor
        endColor: gauge.theme.accent
        trackColor: gauge.theme.border
        lineWidth: 14
    }

    Column {
        anchors.centerIn: parent
        spacing: 0

        Text {
            objectName: "healthScoreText"
            anchors.horizontalCenter: parent.horizontalCenter
            text: gauge.score
            color: gauge.theme.textPrimary
            font.pixelSize: 46
            font.bold: true
        }
        Text {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "HEALTH"
            color: gauge.theme.textSecondary
            font.pixelSize: 12
            font.bold: true
            font.letterSpacing: 2
        }
    }
}
