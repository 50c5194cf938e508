import QtQuick

// The display in the rings' centre hole: the hovered sector's item (with its share and item
// count), otherwise the selection ("Internal Drive" when there is none); the hint and "Up Level".
Item {
    id: hud

    required property var canvas
    required property var theme
    property real diameter: 160

    signal goUp()

    width: diameter
    height: diameter

    Column {
        anchors.centerIn: parent
        width: hud.diameter * 0.8
        spacing: 3

        StorageSymbol {
            anchors.horizontalCenter: parent.horizontalCenter
            name: hud.canvas.hudIcon
            size: Math.max(14, hud.diameter * 0.14)
            tint: hud.theme.accent
        }
        Text {
            objectName: "hudName"
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            elide: Text.ElideMiddle
            // A small hole (minimum window size) shrinks the name before it is elided.
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: 9
            text: hud.canvas.hudName
            color: hud.theme.textPrimary
            font.pixelSize: 14
            font.bold: true
        }
        Text {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            visible: text.length > 0
            text: hud.canvas.hudSizeText
            color: hud.theme.textPrimary
            font.pixelSize: 13
        }
        Text {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            visible: text.length > 0
            text: hud.canvas.hudShareText
            color: hud.theme.textSecondary
            font.pixelSize: 11
        }
        Text {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            visible: text.length > 0
            text: hud.canvas.hudItemsText
            color: hud.theme.textSecondary
            font.pixelSize: 11
        }
        Text {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
            visible: hud.diameter > 150
            text: "Click: Inspect \u2022 Double-click: Zoom"
            color: hud.theme.textSecondary
            font.pixelSize: 10
        }
        StorageButton {
            objectName: "upLevel"
            anchors.horizontalCenter: parent.horizontalCenter
            theme: hud.theme
            symbol: "arrow.up.circle.fill"
            text: "Up Level"
            onClicked: hud.goUp()
        }
    }
}
