import QtQuick
import QtQuick.Controls

// A push button painted from the theme: accent fill when `prominent`, red fill when
// `destructive` (an action that removes files), card fill otherwise, with an optional symbol
// icon before the text and a focus ring while it has keyboard focus.
Button {
    id: control

    required property var theme
    property string symbol
    property bool prominent: false
    property bool destructive: false
    // The themes have no colour for danger; one red serves every theme, as the platforms' own
    // destructive buttons do.
    readonly property color destructiveColor: "#d93a3f"
    readonly property bool filled: prominent || destructive

    implicitHeight: 34
    leftPadding: 14
    rightPadding: 14
    hoverEnabled: true

    contentItem: Row {
        spacing: 7

        Icon {
            visible: control.symbol.length > 0
            anchors.verticalCenter: parent.verticalCenter
            name: control.symbol
            size: 14
            color: control.filled ? "white" : control.theme.accent
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: control.text
            color: control.filled ? "white" : control.theme.textPrimary
            font.pixelSize: 13
            font.bold: control.filled
        }
    }

    background: Rectangle {
        radius: 9
        color: control.destructive ? control.destructiveColor
                                   : (control.prominent ? control.theme.accent
                                                        : control.theme.cardBackground)
        border.color: control.filled ? "transparent" : control.theme.border
        opacity: control.enabled ? (control.down ? 0.75 : 1.0) : 0.45

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: "white"
            opacity: control.hovered && !control.down ? 0.06 : 0
        }
        FocusRing {
            theme: control.theme
            shown: control.visualFocus
        }
    }
}
