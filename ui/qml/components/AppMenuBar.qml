import QtQuick
import QtQuick.Controls

// The main menu: the application menu (About, Quit) and the help menu.
MenuBar {
    id: bar

    required property var appActions
    required property var theme

    background: Rectangle {
        implicitHeight: 28
        color: bar.theme.background
        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: 1
            color: bar.theme.border
        }
    }

    Menu {
        title: "&Sondrel"
        MenuItem {
            text: "About Sondrel"
            onTriggered: bar.appActions.showAboutPanel()
        }
        MenuSeparator {}
        MenuItem {
            text: "Quit Sondrel"
            onTriggered: bar.appActions.quitApp()
        }
    }
    Menu {
        title: "&Help"
        MenuItem {
            text: "Sondrel Help & Support"
            onTriggered: bar.appActions.showHelpPanel()
        }
        MenuItem {
            text: bar.appActions.emailSupportMenuText
            onTriggered: bar.appActions.openSupportEmail()
        }
        MenuItem {
            text: "Online User Guides"
            onTriggered: bar.appActions.openGuides()
        }
    }
}
