import QtQuick
import QtQuick.Controls

// One child of the viewed folder in the details pane: category icon, name, size and share.
// A click selects it; folders have a control that zooms into them; the context menu copies
// the path. Reads the roles of the navigator's contents model.
Rectangle {
    id: row

    required property var contents
    required property var theme
    required property int index
    required property string name
    required property string sizeText
    required property string shareText
    required property bool isDirectory
    required property color categoryColor
    required property string categoryIcon
    required property bool isSelected

    height: 34
    radius: 7
    color: isSelected ? Qt.rgba(theme.accent.r, theme.accent.g, theme.accent.b, 0.22)
                      : (mouse.containsMouse ? Qt.lighter(theme.cardBackground, 1.2) : "transparent")

    MouseArea {
        id: mouse
        anchors.fill: parent
        hoverEnabled: true
        acceptedButtons: Qt.LeftButton | Qt.RightButton
        onClicked: event => {
            if (event.button === Qt.RightButton)
                rowMenu.popup()
            else
                row.contents.select(row.index)
        }
    }

    StorageSymbol {
        id: icon
        anchors.left: parent.left
        anchors.leftMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        name: row.categoryIcon
        size: 15
        tint: row.categoryColor
    }
    Text {
        anchors.left: icon.right
        anchors.leftMargin: 8
        anchors.right: figures.left
        anchors.rightMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        text: row.name
        elide: Text.ElideMiddle
        color: row.theme.textPrimary
        font.pixelSize: 12
    }
    Text {
        id: figures
        anchors.right: zoom.visible ? zoom.left : parent.right
        anchors.rightMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        text: row.sizeText + " \u2022 " + row.shareText
        color: row.theme.textSecondary
        font.pixelSize: 11
    }
    StorageButton {
        id: zoom
        visible: row.isDirectory
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        theme: row.theme
        symbol: "chevron.right.circle.fill"
        leftPadding: 4
        rightPadding: 4
        ToolTip.visible: hovered
        ToolTip.text: "Zoom into this folder"
        onClicked: row.contents.zoom(row.index)
    }
    Menu {
        id: rowMenu
        MenuItem {
            text: "Copy Path"
            onTriggered: row.contents.copyPath(row.index)
        }
    }
}
