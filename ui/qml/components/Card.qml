import QtQuick

// A rounded panel in the theme's card fill with its border.
Rectangle {
    required property var theme

    radius: 14
    color: theme.cardBackground
    border.color: theme.border
    border.width: 1
}
