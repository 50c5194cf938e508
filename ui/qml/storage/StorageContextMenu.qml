import QtQuick
import QtQuick.Controls

// The context menu of a tile or sector, in this order: the item's name (what the menu acts
// on), zoom (folders), uninstall (known applications), reveal, copy path, a divider, move to the
// Trash.
Menu {
    id: menu

    required property var canvas
    required property var details

    MenuItem {
        objectName: "contextMenuTitle"
        text: menu.canvas.contextName
        enabled: false
        font.bold: true
    }
    MenuSeparator {}
    MenuItem {
        text: "Zoom into Folder"
        visible: menu.canvas.contextIsDirectory
        height: visible ? implicitHeight : 0
        onTriggered: menu.canvas.zoomIntoContextItem()
    }
    MenuItem {
        text: "Uninstall App & Clean Leftovers"
        visible: menu.canvas.contextIsApplication
        height: visible ? implicitHeight : 0
        onTriggered: menu.canvas.uninstallContextItem()
    }
    MenuItem {
        text: menu.details.platformText("Reveal in Finder")
        onTriggered: menu.canvas.revealContextItem()
    }
    MenuItem {
        text: "Copy Path"
        onTriggered: menu.canvas.copyContextPath()
    }
    MenuSeparator {}
    MenuItem {
        text: menu.details.platformText("Move to macOS Trash")
        onTriggered: menu.canvas.trashContextItem()
    }
}
