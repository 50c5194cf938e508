import QtQuick

// The keyboard-focus ring of a control: a 2-pixel outline just outside its parent, in the
// theme's primary text colour (which contrasts with the background in every theme). Shown only
// while `shown` is set, normally the control's visualFocus.
Rectangle {
    required property var theme
    property bool shown: false

    objectName: "focusRing"
    anchors.fill: parent
    anchors.margins: -3
    radius: 10
    color: "transparent"
    border.width: 2
    border.color: theme.textPrimary
    visible: shown
}
