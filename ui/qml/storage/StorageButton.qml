import QtQuick
import QtQuick.Controls
import "../components"

// A compact button of the storage views: an optional symbol and a text, on the card colour
// with a border (`bordered`), in the accent colour when `highlighted`, or plain text; a focus
// ring while it has keyboard focus.
Button {
    id: control

    required property var theme
    property string symbol
    property bool bordered: false
    property color textColor: control.highlighted ? "white" : control.theme.textPrimary
    /// The text is elided beyond this width.
    property real maximumTextWidth: 100000

    implicitHeight: 28
    leftPadding: 10
    rightPadding: 10
    hoverEnabled: true

    contentItem: Row {
        spacing: 6

        StorageSymbol {
            visible: control.symbol.length > 0
            anchors.verticalCenter: parent.verticalCenter
            name: control.symbol
            size: 13
            tint: control.highlighted ? "white" : control.theme.accent
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, control.maximumTextWidth)
            elide: Text.ElideRight
            text: control.text
            color: control.textColor
            font.pixelSize: 12
            font.bold: control.highlighted
        }
    }

    background: Rectangle {
        radius: 7
        color: control.highlighted ? control.theme.accent
                                   : (control.hovered ? Qt.lighter(control.theme.cardBackground, 1.25)
                                                      : (control.bordered ? control.theme.cardBackground : "transparent"))
        border.color: control.bordered && !control.highlighted ? control.theme.border : "transparent"
        opacity: control.down ? 0.75 : 1.0

        FocusRing {
            theme: control.theme
            shown: control.visualFocus
            radius: 9
        }
    }
}
