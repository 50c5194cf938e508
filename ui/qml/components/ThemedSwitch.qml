import QtQuick
import QtQuick.Controls

// An on/off switch drawn in the theme: the accent colour when on, the border colour when off,
// a focus ring while it has keyboard focus (Space toggles it).
Switch {
    id: toggle

    required property var theme

    indicator: Rectangle {
        implicitWidth: 40
        implicitHeight: 22
        x: toggle.leftPadding
        y: (toggle.height - height) / 2
        radius: 11
        color: toggle.checked ? toggle.theme.accent : toggle.theme.border
        border.width: toggle.visualFocus ? 2 : 0
        border.color: toggle.theme.textPrimary

        Rectangle {
            x: toggle.checked ? parent.width - width - 2 : 2
            y: 2
            width: 18
            height: 18
            radius: 9
            color: "white"
        }
    }
}
